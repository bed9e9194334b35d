#include "lab/explain/failed_requirement.h"

#include <algorithm>

#include "lab/support/configuration_file.h"
#include "lab/support/controller_values.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

std::optional<PropertyValue> ValueIn(Dictionary dictionary, std::string_view key) {
  const auto* value = dictionary.Find(key);
  return value == nullptr ? std::nullopt : std::optional(*value);
}

// A failure and where its personality's value is, in words.
struct Sides {
  const FailedRequirement& failure;
  const std::optional<FileLocation>& location;

  // Ids are usually written in hexadecimal.
  std::string ValueText(const PropertyValue& value) const {
    return failure.requirement->key.ends_with("ID") ? InlineTextWithHex(value) : InlineText(value);
  }

  std::string Wanted() const { return ValueText(failure.wanted.value()) + AtLocation(location); }
  std::string Found() const { return ValueText(failure.found.value()); }

  // "wants 5 at 9:4", "wants one of [5, 6] at 9:4".
  std::string WantedText() const {
    return (failure.wanted->AsArray() ? "wants one of " : "wants ") + Wanted();
  }

  std::string FoundText() const {
    return failure.found ? "the controller has " + Found() : "the controller has none either";
  }

  std::string NotNewerText() const {
    const char* verdict = failure.wanted->IsNumber() ? " is not" : " is no number and not";
    return Wanted() + verdict + " newer than the installed " + Found();
  }

  // The personality may lack its version, which is a failure of its own.
  std::string EngineeringText() const {
    const auto wanted = failure.wanted ? WantedText() + ", but " : "";
    return wanted + "engineering firmware is installed, marked " + Found();
  }

  std::string WrongKindText() const {
    const auto* key = fernwick::FindKey(failure.requirement->key);
    const bool isOfBoard = failure.requirement->hardwareKey.empty();
    const auto found = failure.found ? Found() : "none";
    return Wanted() + " is not " + std::string(WordsFor(key->kind)) + "; the " +
           (isOfBoard ? "board's revision is " : "controller has ") + found;
  }

  // Of a bound of the installed version. `relation` is how it lies to that.
  std::string BoundText(const std::string& relation) const {
    if (failure.found) return Wanted() + " is " + relation + " the installed " + Found();
    return Wanted() + " is " + relation +
           " every version that the controller could have and the other requirements allow";
  }
};

// The limits of the installed version; null: none that could be compared.
struct Window {
  const PropertyValue* offered = nullptr;
  const PropertyValue* minimum = nullptr;
  const PropertyValue* maximum = nullptr;
};

// Whether a controller could report a version within the window: the lowest one from the minimum on
// decides, for each kind of version.
bool IsPossible(const Window& window, VersionScales scales) {
  const auto versions = LowestInstalledVersions(scales, window.minimum);
  return std::ranges::any_of(versions, [&](const PropertyValue& version) {
    return (window.offered == nullptr || NumberGreater(*window.offered, version)) &&
           (window.maximum == nullptr || !NumberLess(*window.maximum, version));
  });
}

// Null where it is absent, of another kind or NaN, which excludes nothing.
const PropertyValue* ComparableNumber(Dictionary personality, std::string_view key) {
  const auto* value = personality.Find(key);
  return value != nullptr && NumbersEqual(*value, *value) ? value : nullptr;
}

// The limits of a personality. One that alone excludes every version is a failure of its own and
// not among them.
Window WindowOf(Dictionary personality, VersionScales scales) {
  Window window;
  const auto add = [&](const PropertyValue*& limit, std::string_view key) {
    limit = ComparableNumber(personality, key);
    if (!IsPossible(window, scales)) limit = nullptr;
  };
  add(window.offered, "Version");
  add(window.minimum, "Existing Min Version");
  add(window.maximum, "Existing Max Version");
  return window;
}

// The versions that the controller could report: one with a "Ridge UID" is a Thunderbolt
// controller or below one.
VersionScales ScalesOf(TypeSet type, Dictionary hardware) {
  return {.thunderbolt = hardware.Find("Ridge UID") != nullptr,
          .port = type != Types::LegacyThunderbolt};
}

// The failure that a bound of the version would still be once the controller reported one.
std::optional<FailureReason> ReasonWithAnyVersion(TypeSet type, const Requirement& requirement,
                                                  Dictionary personality,
                                                  const RequirementContext& context) {
  const bool isMinimum = requirement.test == RequirementTest::MinVersion;
  if (!isMinimum && requirement.test != RequirementTest::MaxVersion) return std::nullopt;
  const bool isCompared = context.hardware.Find(requirement.hardwareKey) != nullptr;
  const auto* bound = personality.Find(requirement.key);
  if (isCompared || context.bypassVersionCheck || bound == nullptr) return std::nullopt;
  if (!bound->IsNumber()) return FailureReason::WrongKind;
  const auto window = WindowOf(personality, ScalesOf(type, context.hardware));
  const auto* possible = isMinimum ? window.minimum : window.maximum;
  if (possible != nullptr || !NumbersEqual(*bound, *bound)) return std::nullopt;
  return isMinimum ? FailureReason::AboveInstalled : FailureReason::BelowInstalled;
}

}  // namespace

std::vector<FailedRequirement> FailedRequirements(TypeSet type, Dictionary personality,
                                                  const RequirementContext& context) {
  std::vector<FailedRequirement> failures;
  for (const auto& requirement : RequirementsOf(type)) {
    auto reason = Test(requirement, personality, context).failure;
    if (!reason) reason = ReasonWithAnyVersion(type, requirement, personality, context);
    const auto isSame = [&](const FailedRequirement& failure) {
      return failure.requirement->key == requirement.key && failure.reason == reason;
    };
    if (!reason || std::ranges::any_of(failures, isSame)) continue;
    failures.push_back({&requirement, *reason, ValueIn(personality, requirement.key),
                        requirement.hardwareKey.empty()
                            ? PropertyValue(context.boardRevision)
                            : ValueIn(context.hardware, requirement.hardwareKey)});
  }
  return failures;
}

Distance DistanceOf(std::span<const FailedRequirement> failures) {
  const auto isOfController = [](const FailedRequirement& failure) {
    return failure.requirement->test == RequirementTest::SetMatch;
  };
  return {static_cast<std::size_t>(std::ranges::count_if(failures, isOfController)),
          failures.size()};
}

std::string FailureText(const FailedRequirement& failure,
                        const std::optional<FileLocation>& location) {
  const Sides sides{failure, location};
  switch (failure.reason) {
    case FailureReason::PersonalityLacksKey: return "is missing; " + sides.FoundText();
    case FailureReason::HardwareLacksKey:
      return sides.WantedText() + ", but the controller has none";
    case FailureReason::WrongKind: return sides.WrongKindText();
    case FailureReason::Unequal: return sides.WantedText() + ", finds " + sides.Found();
    case FailureReason::NotNewer: return sides.NotNewerText();
    case FailureReason::EngineeringFirmware: return sides.EngineeringText();
    case FailureReason::AboveInstalled: return sides.BoundText("above");
    case FailureReason::BelowInstalled: return sides.BoundText("below");
    case FailureReason::AboveBoardRevision:
      return sides.Wanted() + " is above the board's revision " + sides.Found();
    case FailureReason::BelowBoardRevision: break;
  }
  return sides.Wanted() + " is below the board's revision " + sides.Found();
}

std::string AtLocation(const std::optional<FileLocation>& location) {
  return location ? " at " + Describe(*location) : "";
}

}  // namespace fernwick::lab
