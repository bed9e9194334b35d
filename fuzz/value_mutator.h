#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Changes property lists as values, so that what comes of it is again a property list and gets
/// past the reader. What it puts in comes from the values that it was shown, from the sample values
/// and from the fuzzing engine's own mutations of texts.
class ValueMutator {
 public:
  explicit ValueMutator(unsigned seed);

  /// Shows a property list, whose parts and keys may then turn up anywhere. One that cannot be
  /// read, or is too large, shows nothing.
  void ShowPropertyList(std::string_view bytes);

  /// The value changed in a few places.
  PropertyValue Mutate(PropertyValue value);

  /// A number below `count`. REQUIRES: count is not 0.
  std::size_t Pick(std::size_t count) { return random_() % count; }

 private:
  PropertyValue MutateOne(const PropertyValue& value);
  PropertyValue Replaced(const PropertyValue& value, const PropertyValue* target);
  PropertyValue Changed(const PropertyValue& value);
  PropertyValue ChangedDictionary(const Dictionary& dictionary);
  PropertyValue ChangedArray(Array array);
  std::string ChangedText(std::string_view text);
  const PropertyValue& AnyValue() { return values_[Pick(values_.size())]; }
  const std::string& AnyKey() { return keys_[Pick(keys_.size())]; }

  std::minstd_rand random_;
  std::vector<PropertyValue> values_;
  std::vector<std::string> keys_;
};

/// What the fuzzing engine by itself would make of the first `capacity` bytes: as many at most.
std::string MutatedBytes(std::string_view bytes, std::size_t capacity);

/// The property list in `bytes` mutated as a value, written as binary when it was that and as XML
/// otherwise; as bytes when it is none, when it would become larger than `capacity`, and now and
/// then anyway.
std::string MutatePropertyList(std::string_view bytes, std::size_t capacity, ValueMutator& mutator);

}  // namespace fernwick::fuzz
