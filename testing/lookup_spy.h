#pragma once

#include <set>
#include <string>

#include "value/property_value.h"

namespace fernwick::testing {

/// Learns which keys are looked up in one dictionary, until the end of its scope. One at a time.
/// Works only in a program that is linked with fernwick_spy_on_lookups, which lets every lookup
/// pass by here.
class LookupSpy {
 public:
  explicit LookupSpy(const Dictionary& dictionary);
  ~LookupSpy();
  LookupSpy(const LookupSpy&) = delete;
  LookupSpy& operator=(const LookupSpy&) = delete;

  const std::set<std::string>& Keys() const { return keys_; }

  /// Told of every lookup.
  static void Note(const Dictionary& dictionary, std::string_view key);

 private:
  const Dictionary& dictionary_;
  std::set<std::string> keys_;
};

}  // namespace fernwick::testing
