#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "lab/lint/fingerprint.h"
#include "lab/support/messages.h"

namespace fernwick::lab {

/// The findings of an earlier run that are to be accepted, as a JSON document: of each identity the
/// fingerprint and how many findings have it, and for people also the ID, the path and the message.
class Baseline {
 public:
  /// With `collects` it stores what IsNew is asked about, to be saved.
  explicit Baseline(bool collects) : collects_(collects) {}

  /// Reads a file that Text wrote. Returns why it cannot be used, or nullopt. Without it the
  /// baseline is empty.
  std::optional<LabError> Read(const std::string& path);

  /// Whether the finding is not in the baseline. To be asked once for each: of equal findings as
  /// many are in it as were found then.
  bool IsNew(const FindingIdentity& identity);

  /// How many findings were not new.
  std::size_t Known() const { return known_; }

  /// How many findings it collected, and the file of them.
  std::size_t Found() const { return count_; }
  std::string Text() const;

 private:
  // A finding as a file has it, in the order of the file: by path, ID, message and fingerprint.
  struct Entry {
    std::string path;
    std::string id;
    std::string message;
    std::uint64_t fingerprint;

    friend auto operator<=>(const Entry&, const Entry&) = default;
  };

  bool collects_;
  std::unordered_map<std::uint64_t, std::size_t> left_;  // by fingerprint, those not met yet
  std::size_t known_ = 0;
  std::map<Entry, std::size_t> found_;  // with the number of equal ones
  std::size_t count_ = 0;
};

}  // namespace fernwick::lab
