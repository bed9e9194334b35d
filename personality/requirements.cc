#include "personality/requirements.h"

#include <algorithm>
#include <array>
#include <compare>

#include "value/number.h"

namespace fernwick {
namespace {

using enum KeyPresence;
using enum RequirementTest;
using enum SingleValueKind;

// The version window: whether the firmware may be installed over the installed one. It is newer,
// and the installed version is within both bounds, inclusive. Only the first two depend on the
// bypass.
constexpr Requirement Newer = {NewerVersion, "Version", "Version"};
constexpr Requirement Released = {ReleasedFirmware, "Version", "Engineering Version"};
constexpr Requirement Installed = {InstalledVersion, "Version", "Version"};
constexpr Requirement Minimum = {MinVersion, "Existing Min Version", "Version"};
constexpr Requirement Maximum = {MaxVersion, "Existing Max Version", "Version"};

// With and without the test for engineering firmware.
constexpr std::array FirmwareVersionWindow = {Newer, Released, Installed, Minimum, Maximum};
constexpr std::array FirmwareVersionWindowForAnyFirmware = {Newer, Installed, Minimum, Maximum};

constexpr Requirement Optional(std::string_view key) {
  return {.key = key, .hardwareKey = key};
}

constexpr Requirement Required(std::string_view key, std::string_view missingKeyMessage = {}) {
  return {.key = key,
          .hardwareKey = key,
          .presence = RequiredKey,
          .missingKeyMessage = missingKeyMessage};
}

constexpr std::array LegacyUsbcOwn = {Optional("Port Address")};

constexpr std::array UsbcOwn = {
    Optional("RID"),
    Requirement{MinBoardRevision, "MinBoardRevision", ""},
    Requirement{MaxBoardRevision, "MaxBoardRevision", ""},
    Required("Port Silicon Vendor ID"),
    Required("Port Silicon Device ID"),
    Required("Port Silicon Revision", "** Missing port silicon revision key(s)\n"),
    Requirement{.key = "Port OTP Revision",
                .hardwareKey = "Port OTP Revision",
                .missingKeyMessage = "** Missing port OTP revision key(s) **\n"},
    // The kind and the comparison disagree on purpose: a single string fails the kind, a single
    // number never equals a string, so only an array of strings can match.
    Requirement{.key = "Port UUID",
                .hardwareKey = "Port UUID",
                .kind = NumberKind,
                .equal = StringsEqual,
                .missingKeyMessage = "** Missing port UUID(s)\n"},
};

constexpr std::array LegacyThunderboltOwn = {
    Optional("RID"),
    Required("Ridge Silicon Vendor ID"),
    Required("Ridge Silicon Device ID"),
    Required("Ridge Silicon Revision"),
    Optional("Ridge UID"),
};

constexpr std::array ThunderboltOwn = {
    Requirement{.key = "Device Model Name",
                .hardwareKey = "Device Model Name",
                .kind = StringKind,
                .equal = StringsEqual},
    Optional("Device Model ID"),
    Optional("Device Model Revision"),
    Optional("Firmware Mode"),
};

// The tables one after the other.
template <std::size_t... Sizes>
constexpr auto Joined(const std::array<Requirement, Sizes>&... tables) {
  std::array<Requirement, (Sizes + ...)> joined;
  auto end = joined.begin();
  ((end = std::ranges::copy(tables, end).out), ...);
  return joined;
}

// The table with each requirement marked as the type's own.
template <std::size_t Size>
constexpr auto OwnedBy(std::string_view type, std::array<Requirement, Size> table) {
  for (auto& requirement : table) requirement.type = type;
  return table;
}

constexpr auto LegacyUsbc =
    OwnedBy(PersonalityType::LegacyUsbc, Joined(FirmwareVersionWindow, LegacyUsbcOwn));
constexpr auto Usbc = Joined(LegacyUsbc, OwnedBy(PersonalityType::Usbc, UsbcOwn));
constexpr auto LegacyThunderbolt =
    OwnedBy(PersonalityType::LegacyThunderbolt,
            Joined(FirmwareVersionWindowForAnyFirmware, LegacyThunderboltOwn));
// The version window and "RID" are in it twice.
constexpr auto Thunderbolt =
    Joined(Usbc, LegacyThunderbolt, OwnedBy(PersonalityType::Thunderbolt, ThunderboltOwn));

std::partial_ordering Compare(const PropertyValue& a, const PropertyValue& b) {
  const auto integer = a.AsInteger();
  const auto other = b.AsInteger();
  if (integer && other) return *integer <=> *other;
  const auto left = a.AsNumber();
  const auto right = b.AsNumber();
  if (!left || !right) return std::partial_ordering::unordered;
  return CompareNumbers(*left, *right);
}

bool IsOfKind(const PropertyValue& value, SingleValueKind kind) {
  return kind == NumberKind ? value.IsNumber() : value.AsString().has_value();
}

bool EqualsOrContains(const PropertyValue& wanted, const Requirement& requirement,
                      const PropertyValue& found) {
  const auto equals = [&](const PropertyValue& value) { return requirement.equal(value, found); };
  const auto list = wanted.AsArray();
  return list ? std::ranges::any_of(*list, equals) : equals(wanted);
}

// A minimum or a maximum: when it excludes a value, and what is reported then.
struct Bound {
  bool (*excludes)(const PropertyValue& bound, const PropertyValue& value);
  FailureReason reason;
  std::string_view wrongKindMessage = {};
  std::string_view notMetMessage = {};
};

constexpr Bound MinVersionBound = {NumberGreater, FailureReason::AboveInstalled,
                                   "** minversion bad object type in personality\n",
                                   "** Min firmware version not met.  Aborting\n"};
constexpr Bound MaxVersionBound = {NumberLess, FailureReason::BelowInstalled,
                                   "** maxversion bad object type in personality\n",
                                   "** Max firmware version not met.  Aborting\n"};
constexpr Bound MinRevisionBound = {NumberGreater, FailureReason::AboveBoardRevision};
constexpr Bound MaxRevisionBound = {NumberLess, FailureReason::BelowBoardRevision};

// A bound of another kind than a number is not met. A value that is not a number is within every
// bound that is one.
Verdict TestBound(const Bound& bound, const PropertyValue* limit, const PropertyValue& value) {
  if (limit == nullptr) return {};
  if (!limit->IsNumber()) return {FailureReason::WrongKind, bound.wrongKindMessage};
  if (bound.excludes(*limit, value)) return {bound.reason, bound.notMetMessage};
  return {};
}

// An installed version that is not known, which only a bypassed version check allows, is within
// every bound, whatever its kind.
Verdict TestVersionBound(const Bound& bound, const PropertyValue* limit,
                         const PropertyValue* installed) {
  return installed == nullptr ? Verdict{} : TestBound(bound, limit, *installed);
}

// Every failure is silent.
Verdict TestNewer(const PropertyValue* offered, const PropertyValue* installed) {
  if (offered == nullptr) return {FailureReason::PersonalityLacksKey};
  if (installed == nullptr) return {FailureReason::HardwareLacksKey};
  if (!NumberGreater(*offered, *installed)) return {FailureReason::NotNewer};
  return {};
}

Verdict TestReleased(const PropertyValue* marker) {
  const auto number = marker == nullptr ? std::nullopt : marker->AsNumber();
  if (!number || ToUnsigned64(*number) == 0) return {};
  return {FailureReason::EngineeringFirmware};
}

Verdict TestInstalled(const PropertyValue* installed) {
  if (installed != nullptr) return {};
  return {std::nullopt, "** No current firmware version?\n"};
}

// Tests one requirement against the hardware's value, which is null where it is absent and of no
// meaning for a board revision.
Verdict TestAgainst(const Requirement& requirement, Dictionary personality,
                    const PropertyValue* found, const RequirementContext& context) {
  const auto wanted = [&] { return personality.Find(requirement.key); };
  const bool isBypassed = context.bypassVersionCheck;
  // coverage: 1 of 9 branches: The enumeration has no ninth value.
  switch (requirement.test) {
    case NewerVersion: return isBypassed ? Verdict{} : TestNewer(wanted(), found);
    case ReleasedFirmware: return isBypassed ? Verdict{} : TestReleased(found);
    case InstalledVersion: return TestInstalled(found);
    case MinVersion: return TestVersionBound(MinVersionBound, wanted(), found);
    case MaxVersion: return TestVersionBound(MaxVersionBound, wanted(), found);
    case MinBoardRevision: return TestBound(MinRevisionBound, wanted(), context.boardRevision);
    case MaxBoardRevision: return TestBound(MaxRevisionBound, wanted(), context.boardRevision);
    case SetMatch: break;
  }
  return RequirementSetMatch(requirement, wanted(), found);
}

}  // namespace

bool NumbersEqual(const PropertyValue& a, const PropertyValue& b) {
  return Compare(a, b) == std::partial_ordering::equivalent;
}

bool NumberGreater(const PropertyValue& a, const PropertyValue& b) {
  return Compare(a, b) == std::partial_ordering::greater;
}

bool NumberLess(const PropertyValue& a, const PropertyValue& b) {
  return Compare(a, b) == std::partial_ordering::less;
}

bool StringsEqual(const PropertyValue& a, const PropertyValue& b) {
  const auto left = a.AsString();
  return left && left == b.AsString();
}

std::span<const Requirement> RequirementsOf(TypeSet type) {
  switch (type) {
    case Types::LegacyUsbc: return LegacyUsbc;
    case Types::Usbc: return Usbc;
    case Types::LegacyThunderbolt: return LegacyThunderbolt;
    case Types::Thunderbolt: return Thunderbolt;
    default: return {};
  }
}

Verdict RequirementSetMatch(const Requirement& requirement, const PropertyValue* wanted,
                            const PropertyValue* found) {
  if (wanted == nullptr) {
    if (requirement.presence == OptionalKey) return {};
    return {FailureReason::PersonalityLacksKey, requirement.missingKeyMessage};
  }
  if (found == nullptr) return {FailureReason::HardwareLacksKey, requirement.missingKeyMessage};
  if (!wanted->AsArray() && !IsOfKind(*wanted, requirement.kind)) {
    return {FailureReason::WrongKind};
  }
  if (!EqualsOrContains(*wanted, requirement, *found)) return {FailureReason::Unequal};
  return {};
}

Verdict Test(const Requirement& requirement, Dictionary personality,
             const RequirementContext& context) {
  return TestAgainst(requirement, personality, context.hardware.Find(requirement.hardwareKey),
                     context);
}

ControllerCheck::ControllerCheck(TypeSet type, const RequirementContext& context)
    : requirements_(RequirementsOf(type)), context_(context), found_{} {
  static_assert(Thunderbolt.size() <= MaxRequirements);
  std::ranges::transform(requirements_, found_.begin(), [&](const Requirement& requirement) {
    return context.hardware.Find(requirement.hardwareKey);
  });
}

bool ControllerCheck::Applies(Dictionary personality, Console& console) const {
  for (std::size_t i = 0; i < requirements_.size(); ++i) {
    const auto verdict = TestAgainst(requirements_[i], personality, found_[i], context_);
    if (!verdict.diagnostic.empty()) console.WriteError(verdict.diagnostic);
    if (verdict.failure) return false;
  }
  return true;
}

bool CheckLegacyUsbcRequirements(Dictionary personality, const RequirementContext& context,
                                 Console& console) {
  return ControllerCheck(Types::LegacyUsbc, context).Applies(personality, console);
}

bool CheckUsbcRequirements(Dictionary personality, const RequirementContext& context,
                           Console& console) {
  return ControllerCheck(Types::Usbc, context).Applies(personality, console);
}

bool CheckLegacyThunderboltRequirements(Dictionary personality, const RequirementContext& context,
                                        Console& console) {
  return ControllerCheck(Types::LegacyThunderbolt, context).Applies(personality, console);
}

bool CheckThunderboltRequirements(Dictionary personality, const RequirementContext& context,
                                  Console& console) {
  return ControllerCheck(Types::Thunderbolt, context).Applies(personality, console);
}

}  // namespace fernwick
