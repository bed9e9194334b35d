#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "personality/personality.h"
#include "platform/console.h"
#include "registry/hardware_record.h"
#include "registry/key_schema.h"

namespace fernwick {

// The requirements of the personality types as tables, and the function that tests one of them. A
// requirement is one test of a personality against a hardware record; the table of a type is the
// list of its requirements in the order in which they are tested; the first that fails decides. A
// table is composed at compile time and begins with those of the types that it includes, so what
// two of them test is listed twice.

/// The comparisons: the personality's value comes first, the hardware's second. An operand of
/// another kind makes each of them false.
bool NumbersEqual(const PropertyValue& a, const PropertyValue& b);
bool NumberGreater(const PropertyValue& a, const PropertyValue& b);
bool NumberLess(const PropertyValue& a, const PropertyValue& b);

/// The same characters, case-sensitive.
bool StringsEqual(const PropertyValue& a, const PropertyValue& b);

/// Why a requirement is not met.
enum class FailureReason {
  PersonalityLacksKey,  // the personality never matches without it
  HardwareLacksKey,
  WrongKind,            // the personality's value is of a kind that matches nothing
  Unequal,              // neither the value nor an element of the list equals the hardware's
  NotNewer,             // the offered version is not newer than the installed one
  EngineeringFirmware,  // the controller runs it
  AboveInstalled,       // the minimum is above the installed version
  BelowInstalled,       // the maximum is below the installed version
  AboveBoardRevision,   // the minimum is above the board's revision
  BelowBoardRevision,   // the maximum is below the board's revision
};

/// What a requirement tests.
enum class RequirementTest {
  NewerVersion,      // the offered version is newer than the installed one, or nothing is checked
  ReleasedFirmware,  // the installed firmware is not engineering firmware, or nothing is checked
  InstalledVersion,  // never fails; reports an installed version that is not known
  MinVersion,        // the installed version is not below the minimum
  MaxVersion,        // the installed version is not above the maximum
  MinBoardRevision,  // the same of the board's revision
  MaxBoardRevision,
  SetMatch,  // RequirementSetMatch
};

/// Whether a personality must have a key to match at all.
enum class KeyPresence { OptionalKey, RequiredKey };

/// What a personality may have under a key as a single value.
enum class SingleValueKind { NumberKind, StringKind };

/// One requirement: a row of a table. The fields after `type` are those of a SetMatch.
struct Requirement {
  RequirementTest test = RequirementTest::SetMatch;
  std::string_view key;          // of the personality
  std::string_view hardwareKey;  // of the hardware record; empty for the board revision
  std::string_view type = {};    // whose own requirement it is
  KeyPresence presence = KeyPresence::OptionalKey;
  SingleValueKind kind = SingleValueKind::NumberKind;
  bool (*equal)(const PropertyValue&, const PropertyValue&) = NumbersEqual;
  std::string_view missingKeyMessage = {};  // the diagnostic when a needed key is missing
};

/// What a requirement is tested against, besides the personality.
struct RequirementContext {
  Dictionary hardware;
  std::uint8_t boardRevision = 0;
  bool bypassVersionCheck = false;
};

/// The result of testing one requirement. A diagnostic may come without a failure.
struct Verdict {
  std::optional<FailureReason> failure = std::nullopt;  // nullopt: the requirement is met
  std::string_view diagnostic = {};                     // a line for standard error, or empty

  friend bool operator==(const Verdict&, const Verdict&) = default;
};

/// The requirements of a type, in order; empty for Types::None. REQUIRES: one type.
std::span<const Requirement> RequirementsOf(TypeSet type);

/// Tests one requirement. Without side effects.
Verdict Test(const Requirement& requirement, Dictionary personality,
             const RequirementContext& context);

/// The test of a SetMatch: whether the hardware's value equals the personality's single value or an
/// element of its array; null: absent. A personality without an optional key sets no constraint;
/// otherwise both need the key, and presence is tested before kind.
Verdict RequirementSetMatch(const Requirement& requirement, const PropertyValue* wanted,
                            const PropertyValue* found);

/// The check of a type for one controller. Its values are looked up once, since a configuration may
/// have many personalities. REQUIRES: the hardware record outlives this and does not change.
class ControllerCheck {
 public:
  ControllerCheck(TypeSet type, const RequirementContext& context);

  /// Whether the personality meets all requirements of the type: tests them in order up to the
  /// first that it does not meet, and writes the diagnostics to standard error.
  bool Applies(Dictionary personality, Console& console) const;

 private:
  static constexpr std::size_t MaxRequirements = 32;

  std::span<const Requirement> requirements_;
  RequirementContext context_;
  std::array<const PropertyValue*, MaxRequirements> found_;  // by each; null: absent
};

// The check of each type by its name: a ControllerCheck of one personality. The matcher, which
// tests many, does not use them.

/// Whether a "LegacyUSBC" personality applies to a port: the version window and "Port Address".
bool CheckLegacyUsbcRequirements(Dictionary personality, const RequirementContext& context,
                                 Console& console);

/// Whether a "USBC" personality applies to a port: all that a "LegacyUSBC" one requires, then
/// "RID", the bounds of the board revision and the port silicon.
bool CheckUsbcRequirements(Dictionary personality, const RequirementContext& context,
                           Console& console);

/// Whether a "LegacyThunderbolt" personality applies to a Thunderbolt controller: the version
/// window, where engineering firmware does not matter, then "RID", the Ridge silicon and "Ridge
/// UID". The board revision is not tested.
bool CheckLegacyThunderboltRequirements(Dictionary personality, const RequirementContext& context,
                                        Console& console);

/// Whether a "Thunderbolt" personality applies to a port and the Thunderbolt controller above it:
/// all that a "USBC" and then all that a "LegacyThunderbolt" one requires, then the device model.
bool CheckThunderboltRequirements(Dictionary personality, const RequirementContext& context,
                                  Console& console);

}  // namespace fernwick
