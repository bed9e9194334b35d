#include "personality/requirement_rules.h"

#include <algorithm>
#include <compare>

#include "personality/bypass_flags.h"
#include "platform/diagnostics.h"
#include "value/number.h"

namespace fernwick {
namespace {

// Unordered when either is not a number, which makes every comparison false.
std::partial_ordering Compare(const PropertyValue& a, const PropertyValue& b) {
  const auto left = a.AsNumber();
  const auto right = b.AsNumber();
  if (!left || !right) return std::partial_ordering::unordered;
  return CompareNumbers(*left, *right);
}

bool FailMissing(const RequirementSet& requirement) {
  if (requirement.missingKeyMessage != nullptr) WriteDiagnostic(requirement.missingKeyMessage);
  return false;
}

bool IsOfKind(const PropertyValue& value, SingleValueKind kind) {
  return kind == SingleValueKind::NumberKind ? value.IsNumber() : value.AsString().has_value();
}

bool RunsEngineeringFirmware(const HardwareRecord& hardware) {
  const auto* version = hardware.Find("Engineering Version");
  const auto number = version == nullptr ? std::nullopt : version->AsNumber();
  return number && ToUnsigned64(*number) != 0;
}

// Every rejection here is silent.
bool IsNewerThanInstalled(const Personality& personality, const HardwareRecord& hardware,
                          EngineeringGate gate) {
  const auto* offered = personality.Find("Version");
  const auto* installed = hardware.Find("Version");
  if (offered == nullptr || installed == nullptr) return false;
  if (!NumberGreater(*offered, *installed)) return false;
  return gate == EngineeringGate::Off || !RunsEngineeringFirmware(hardware);
}

// One end of the range of installed versions that may be updated.
struct VersionBound {
  std::string_view key;
  bool (*excludes)(const PropertyValue& bound, const PropertyValue& installed);
  const char* badTypeMessage;
  const char* notMetMessage;
};

constexpr VersionBound MinimumVersion = {
    "Existing Min Version",
    NumberGreater,
    "** minversion bad object type in personality\n",
    "** Min firmware version not met.  Aborting\n",
};

constexpr VersionBound MaximumVersion = {
    "Existing Max Version",
    NumberLess,
    "** maxversion bad object type in personality\n",
    "** Max firmware version not met.  Aborting\n",
};

// An installed version that is not a number lies within every bound.
bool IsWithin(const VersionBound& bound, const Personality& personality,
              const PropertyValue& installed) {
  const auto* limit = personality.Find(bound.key);
  if (limit == nullptr) return true;
  if (!limit->IsNumber()) {
    WriteDiagnostic(bound.badTypeMessage);
    return false;
  }
  if (bound.excludes(*limit, installed)) {
    WriteDiagnostic(bound.notMetMessage);
    return false;
  }
  return true;
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

bool RequirementSetMatch(const Personality& personality, const HardwareRecord& hardware,
                         const RequirementSet& requirement) {
  const auto* wanted = personality.Find(requirement.key);
  if (wanted == nullptr) {
    if (requirement.presence == KeyPresence::OptionalKey) return true;
    return FailMissing(requirement);
  }
  const auto* found = hardware.Find(requirement.key);
  if (found == nullptr) return FailMissing(requirement);
  if (const auto* wantedAny = wanted->AsArray()) {
    for (const auto& element : *wantedAny) {
      if (requirement.equal(element, *found)) return true;
    }
    return false;
  }
  return IsOfKind(*wanted, requirement.kind) && requirement.equal(*wanted, *found);
}

bool MatchesAll(const Personality& personality, const HardwareRecord& hardware,
                std::span<const RequirementSet> requirements) {
  return std::ranges::all_of(requirements, [&](const RequirementSet& requirement) {
    return RequirementSetMatch(personality, hardware, requirement);
  });
}

bool FirmwareVersionWindow(const Personality& personality, const HardwareRecord& hardware,
                           EngineeringGate gate) {
  if (BypassVersionCheck == 0 && !IsNewerThanInstalled(personality, hardware, gate)) return false;
  const auto* installed = hardware.Find("Version");
  if (installed == nullptr) {
    // Reached only with the version check bypassed. The window counts as satisfied.
    WriteDiagnostic("** No current firmware version?\n");
    return true;
  }
  return IsWithin(MinimumVersion, personality, *installed) &&
         IsWithin(MaximumVersion, personality, *installed);
}

}  // namespace fernwick
