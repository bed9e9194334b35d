#include "personality/requirement_rules.h"

#include <algorithm>
#include <compare>
#include <optional>

#include "personality/bypass_flags.h"
#include "platform/diagnostics.h"
#include "value/number.h"

namespace fernwick {
namespace {

// Not part of Compare, which would be the slower for it.
[[gnu::noinline]] std::partial_ordering CompareAny(const PropertyValue& a, const PropertyValue& b) {
  const auto left = a.AsNumber();
  const auto right = b.AsNumber();
  if (!left || !right) return std::partial_ordering::unordered;
  return CompareNumbers(*left, *right);
}

// Unordered when either is not a number, which makes every comparison false. Nearly all are
// integers, but for the installed versions, and the matcher compares many.
std::partial_ordering Compare(const PropertyValue& a, const PropertyValue& b) {
  const auto left = a.AsInteger();
  if (!left) return CompareAny(a, b);
  if (const auto right = b.AsInteger()) return *left <=> *right;
  if (const auto* right = b.AsReal()) return CompareWithReal(*left, *right);
  return CompareAny(a, b);
}

// A value that may be absent (null), for a recorder to keep.
std::optional<PropertyValue> Kept(const PropertyValue* value) {
  if (value == nullptr) return std::nullopt;
  return *value;
}

// A diagnostic may be absent (null). Once a requirement has failed, none is written: without a
// recorder nothing would be evaluated any more.
void Tell(const char* diagnostic, const RequirementRecorder* recorder) {
  if (diagnostic == nullptr || (recorder != nullptr && recorder->HasFailures())) return;
  WriteDiagnostic(diagnostic);
}

// The two sides of a requirement: the personality's value and the hardware's, null where absent.
struct Sides {
  CheckedKey key;
  const PropertyValue* wanted;
  CheckedKey hardwareKey;
  const PropertyValue* found;
};

Sides SidesOf(CheckedKey key, const CheckedValues& personality, const CheckedValues& hardware) {
  return {key, personality.Find(key), key, hardware.Find(key)};
}

bool Fail(Shortfall shortfall, const Sides& sides, const char* diagnostic,
          RequirementRecorder* recorder) {
  Tell(diagnostic, recorder);
  if (recorder != nullptr) {
    recorder->Add({sides.key.Name(), shortfall, Kept(sides.wanted), sides.hardwareKey.Name(),
                   Kept(sides.found)});
  }
  return false;
}

bool IsOfKind(const PropertyValue& value, SingleValueKind kind) {
  return kind == SingleValueKind::NumberKind ? value.IsNumber() : value.AsString().has_value();
}

// Every rejection here is silent.
bool IsNewerThanInstalled(const Sides& version, RequirementRecorder* recorder) {
  if (version.wanted == nullptr) {
    return Fail(Shortfall::PersonalityLacksKey, version, nullptr, recorder);
  }
  if (version.found == nullptr) {
    return Fail(Shortfall::HardwareLacksKey, version, nullptr, recorder);
  }
  return NumberGreater(*version.wanted, *version.found) ||
         Fail(Shortfall::NotNewer, version, nullptr, recorder);
}

// Silent as well.
bool RunsReleasedFirmware(const Sides& version, const CheckedValues& hardware,
                          RequirementRecorder* recorder) {
  const auto* marker = hardware.Find("Engineering Version");
  const auto number = marker == nullptr ? std::nullopt : marker->AsNumber();
  if (!number || ToUnsigned64(*number) == 0) return true;
  return Fail(Shortfall::EngineeringFirmware,
              {version.key, version.wanted, "Engineering Version", marker}, nullptr, recorder);
}

// One end of the range of installed versions that may be updated.
struct VersionBound {
  CheckedKey key;
  bool (*excludes)(const PropertyValue& bound, const PropertyValue& installed);
  Shortfall shortfall;
  const char* badTypeMessage;
  const char* notMetMessage;
};

constexpr VersionBound MinimumVersion = {
    "Existing Min Version",
    NumberGreater,
    Shortfall::AboveInstalled,
    "** minversion bad object type in personality\n",
    "** Min firmware version not met.  Aborting\n",
};

constexpr VersionBound MaximumVersion = {
    "Existing Max Version",
    NumberLess,
    Shortfall::BelowInstalled,
    "** maxversion bad object type in personality\n",
    "** Max firmware version not met.  Aborting\n",
};

// An installed version that is not a number lies within every bound.
bool IsWithin(const VersionBound& bound, const CheckedValues& personality,
              const PropertyValue& installed, RequirementRecorder* recorder) {
  const auto* limit = personality.Find(bound.key);
  if (limit == nullptr) return true;
  const Sides sides{bound.key, limit, "Version", &installed};
  if (!limit->IsNumber()) return Fail(Shortfall::WrongKind, sides, bound.badTypeMessage, recorder);
  return !bound.excludes(*limit, installed) ||
         Fail(bound.shortfall, sides, bound.notMetMessage, recorder);
}

// An installed version that is not known, which only a bypassed version check lets through, lies
// within every bound.
bool IsInstalledVersionWithin(const CheckedValues& personality, const PropertyValue* installed,
                              RequirementRecorder* recorder) {
  if (installed == nullptr) {
    Tell("** No current firmware version?\n", recorder);
    return true;
  }
  return AllMet(
      recorder, [&] { return IsWithin(MinimumVersion, personality, *installed, recorder); },
      [&] { return IsWithin(MaximumVersion, personality, *installed, recorder); });
}

bool IsOrHolds(const PropertyValue& wanted, const RequirementSet& requirement,
               const PropertyValue& found) {
  const auto equals = [&](const PropertyValue& value) { return requirement.equal(value, found); };
  const auto* list = wanted.AsArray();
  return list != nullptr ? std::ranges::any_of(*list, equals) : equals(wanted);
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

bool RequirementSetMatch(const CheckedValues& personality, const CheckedValues& hardware,
                         const RequirementSet& requirement, RequirementRecorder* recorder) {
  const auto sides = SidesOf(requirement.key, personality, hardware);
  const char* missing = requirement.missingKeyMessage;
  if (sides.wanted == nullptr) {
    return requirement.presence == KeyPresence::OptionalKey ||
           Fail(Shortfall::PersonalityLacksKey, sides, missing, recorder);
  }
  if (sides.found == nullptr) return Fail(Shortfall::HardwareLacksKey, sides, missing, recorder);
  const bool isList = sides.wanted->AsArray() != nullptr;
  if (!isList && !IsOfKind(*sides.wanted, requirement.kind)) {
    return Fail(Shortfall::WrongKind, sides, nullptr, recorder);
  }
  return IsOrHolds(*sides.wanted, requirement, *sides.found) ||
         Fail(Shortfall::Unequal, sides, nullptr, recorder);
}

bool MatchesAll(const CheckedValues& personality, const CheckedValues& hardware,
                std::span<const RequirementSet> requirements, RequirementRecorder* recorder) {
  bool met = true;
  for (const auto& requirement : requirements) {
    met = RequirementSetMatch(personality, hardware, requirement, recorder) && met;
    if (!met && recorder == nullptr) return false;
  }
  return met;
}

bool FirmwareVersionWindow(const CheckedValues& personality, const CheckedValues& hardware,
                           EngineeringGate gate, RequirementRecorder* recorder) {
  const auto version = SidesOf("Version", personality, hardware);
  return AllMet(
      recorder, [&] { return BypassVersionCheck != 0 || IsNewerThanInstalled(version, recorder); },
      [&] {
        return BypassVersionCheck != 0 || gate == EngineeringGate::Off ||
               RunsReleasedFirmware(version, hardware, recorder);
      },
      [&] { return IsInstalledVersionWithin(personality, version.found, recorder); });
}

}  // namespace fernwick
