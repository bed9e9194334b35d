#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "value/property_value.h"

namespace fernwick {

/// How a requirement of a personality was not met.
enum class Shortfall {
  PersonalityLacksKey,  // one without which it never matches
  HardwareLacksKey,
  WrongKind,            // the personality's value is of a kind that matches nothing
  Unequal,              // to the hardware's value, be it as a single value or in a list
  NotNewer,             // than the installed version
  EngineeringFirmware,  // is installed
  AboveInstalled,       // a minimum
  BelowInstalled,       // a maximum
  AboveBoardRevision,   // a minimum
  BelowBoardRevision,   // a maximum
};

/// One requirement that kept a personality from a controller.
struct FailedRequirement {
  std::string_view key;  // of the personality; a literal
  Shortfall shortfall;
  std::optional<PropertyValue> wanted;  // what the personality has under the key
  std::string_view hardwareKey;         // where the hardware was looked at; a literal, empty for
                                        // the board revision
  std::optional<PropertyValue> found;   // what it has there; for the board revision, the board's
  std::string_view check = {};          // the type whose own requirement it is; a literal

  friend bool operator==(const FailedRequirement&, const FailedRequirement&) = default;
};

/// Learns from the requirement checks why they reject. A check that is given one goes on behind the
/// first requirement that fails, so that every one is told; what it answers and what it writes to
/// standard error stay the same. The production run gives none (null).
class RequirementRecorder {
 public:
  /// Keeps the failure, as one of the innermost open scope's check, save when the same requirement
  /// has been kept before: some are held twice.
  void Add(FailedRequirement failure);

  bool HasFailures() const { return !failures_.empty(); }

  /// In the order in which the checks hold them; the first is the one that decided.
  const std::vector<FailedRequirement>& Failures() const { return failures_; }

 private:
  friend class CheckScope;

  std::string_view check_;
  std::vector<FailedRequirement> failures_;
};

/// Tells a recorder, which may be null, whose requirements are held until the end of the scope.
class CheckScope {
 public:
  /// `check` is a literal.
  CheckScope(std::string_view check, RequirementRecorder* recorder) : recorder_(recorder) {
    if (recorder_ != nullptr) outer_ = std::exchange(recorder_->check_, check);
  }
  ~CheckScope() {
    if (recorder_ != nullptr) recorder_->check_ = outer_;
  }
  CheckScope(const CheckScope&) = delete;
  CheckScope& operator=(const CheckScope&) = delete;

 private:
  RequirementRecorder* recorder_;
  std::string_view outer_;
};

}  // namespace fernwick
