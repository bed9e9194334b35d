#pragma once

#include <span>
#include <string_view>

#include "personality/checked_values.h"
#include "personality/requirement_recorder.h"

namespace fernwick {

/// The comparisons of the requirement checks. The personality's value comes first, the hardware's
/// second. An operand of another kind makes each of them false; none ever fails.
bool NumbersEqual(const PropertyValue& a, const PropertyValue& b);
bool NumberGreater(const PropertyValue& a, const PropertyValue& b);
bool NumberLess(const PropertyValue& a, const PropertyValue& b);

/// The same characters, case-sensitive.
bool StringsEqual(const PropertyValue& a, const PropertyValue& b);

/// Whether a personality must name a key to match at all.
enum class KeyPresence { OptionalKey, RequiredKey };

/// What a personality may hold under a key as a single value.
enum class SingleValueKind { NumberKind, StringKind };

/// How one key of a personality constrains the value of the same key of the hardware.
struct RequirementSet {
  CheckedKey key;
  KeyPresence presence = KeyPresence::OptionalKey;
  SingleValueKind kind = SingleValueKind::NumberKind;
  bool (*equal)(const PropertyValue&, const PropertyValue&) = NumbersEqual;
  const char* missingKeyMessage = nullptr;  // for standard error, when a needed key is missing
};

/// Whether all requirements are met. They are evaluated in order up to the first that is not; with
/// a recorder all of them, which write no diagnostic from then on.
template <typename... Requirement>
bool AllMet(const RequirementRecorder* recorder, Requirement... requirements) {
  bool met = true;
  const auto evaluate = [&](auto& requirement) {
    if (met || recorder != nullptr) met = requirement() && met;
  };
  (evaluate(requirements), ...);
  return met;
}

/// Whether the hardware's value equals the personality's single value or an element of its array. A
/// personality without an optional key sets no constraint; otherwise both need the key, and its
/// missing-key message, if there is one, goes to standard error when one lacks it. Presence is
/// tested before the kind.
bool RequirementSetMatch(const CheckedValues& personality, const CheckedValues& hardware,
                         const RequirementSet& requirement,
                         RequirementRecorder* recorder = nullptr);

/// Whether all of them match, as AllMet.
bool MatchesAll(const CheckedValues& personality, const CheckedValues& hardware,
                std::span<const RequirementSet> requirements,
                RequirementRecorder* recorder = nullptr);

/// Whether the newer-than-installed test of the version window also rejects hardware that runs
/// engineering firmware.
enum class EngineeringGate { Off, On };

/// Whether the personality's firmware may be installed over the hardware's: it is newer, and the
/// installed version lies within "Existing Min Version" and "Existing Max Version", both inclusive.
/// With `BypassVersionCheck` set it need not be newer and engineering firmware is no obstacle; then
/// an installed version that is not known, or no number, lies within every bound. Writes to
/// standard error that the version is not known, or which bound is not met or not a number.
bool FirmwareVersionWindow(const CheckedValues& personality, const CheckedValues& hardware,
                           EngineeringGate gate, RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
