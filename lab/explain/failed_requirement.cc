// Full evaluation of a requirement table and, for an installed version that is not known, a
// feasibility test: limits are added in the order "Version", minimum, maximum; one that leaves no
// version that can be reported is itself the failure and is not added. O(requirements), and a
// binary search of the scale of versions for each limit.

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
struct FailureWording {
  const FailedRequirement& failure;
  const std::optional<ValueOrigin>& location;

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
    if (!failure.found) {
      return Wanted() + " is not newer than any version that the controller could have";
    }
    const char* verdict = failure.wanted->IsNumber() ? " is not" : " is not a number and not";
    return Wanted() + verdict + " newer than the installed " + Found();
  }

  // The personality may lack its version, which is a failure of its own.
  std::string EngineeringText() const {
    const auto wanted = failure.wanted ? WantedText() + ", but " : "";
    return wanted + "engineering firmware is installed, marked " + Found();
  }

  std::string WrongKindText() const {
    const auto* key = FindKey(failure.requirement->key);
    const bool isOfBoard = failure.requirement->hardwareKey.empty();
    const auto found = failure.found ? Found() : "none";
    return Wanted() + " is not " + std::string(WordsFor(key->kind)) + "; the " +
           (isOfBoard ? "board's revision is " : "controller has ") + found;
  }

  // Why a bound of the installed version is not met; `relation` is "above" or "below".
  std::string BoundText(const std::string& relation) const {
    if (failure.found) return Wanted() + " is " + relation + " the installed " + Found();
    return Wanted() + " is " + relation +
           " every version that the controller could have and the other requirements allow";
  }
};

// Null where it is absent, of another kind or NaN, which excludes nothing.
const PropertyValue* ComparableNumber(Dictionary personality, std::string_view key) {
  const auto* value = personality.Find(key);
  return value != nullptr && NumbersEqual(*value, *value) ? value : nullptr;
}

// The limits of a personality. One that alone excludes every version is a failure of its own and
// not among them.
VersionWindow WindowOf(Dictionary personality, VersionScales scales) {
  VersionWindow window;
  const auto add = [&](const PropertyValue*& limit, std::string_view key) {
    limit = ComparableNumber(personality, key);
    if (!window.ContainsAny(scales)) limit = nullptr;
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

// The limit of the installed version that the requirement compares; null: it compares none.
const PropertyValue* LimitOf(const VersionWindow& window, RequirementTest test) {
  switch (test) {
    case RequirementTest::NewerVersion: return window.offered;
    case RequirementTest::MinVersion: return window.minimum;
    default: return window.maximum;
  }
}

// The failure that a requirement of the version would still be once the controller reported one.
std::optional<FailureReason> ReasonForEveryVersion(TypeSet type, const Requirement& requirement,
                                                   Dictionary personality,
                                                   const RequirementContext& context) {
  using enum RequirementTest;
  const auto test = requirement.test;
  const auto* limit = personality.Find(requirement.key);
  const bool isLimit = test == NewerVersion || test == MinVersion || test == MaxVersion;
  if (!isLimit || limit == nullptr || context.bypassVersionCheck) return std::nullopt;
  if (context.hardware.Find(requirement.hardwareKey) != nullptr) return std::nullopt;
  if (!limit->IsNumber()) return FailureReason::WrongKind;
  const auto window = WindowOf(personality, ScalesOf(type, context.hardware));
  if (LimitOf(window, test) != nullptr) return std::nullopt;
  if (test == NewerVersion) return FailureReason::NotNewer;
  if (!NumbersEqual(*limit, *limit)) return std::nullopt;  // a bound that is NaN excludes nothing
  return test == MinVersion ? FailureReason::AboveInstalled : FailureReason::BelowInstalled;
}

// Whether no controller at all would meet it.
bool IsNeverMet(const FailedRequirement& failure) {
  switch (failure.reason) {
    case FailureReason::PersonalityLacksKey:
    case FailureReason::WrongKind: return true;
    case FailureReason::NotNewer:
    case FailureReason::AboveInstalled:
    case FailureReason::BelowInstalled: return !failure.found;
    default: return false;
  }
}

}  // namespace

bool AllowsAnyVersion(TypeSet type, Dictionary personality, Dictionary hardware) {
  const VersionWindow window = {ComparableNumber(personality, "Version"),
                                ComparableNumber(personality, "Existing Min Version"),
                                ComparableNumber(personality, "Existing Max Version")};
  return window.ContainsAny(ScalesOf(type, hardware));
}

std::vector<FailedRequirement> FailedRequirements(TypeSet type, Dictionary personality,
                                                  const RequirementContext& context) {
  std::vector<FailedRequirement> failures;
  for (const auto& requirement : RequirementsOf(type)) {
    auto reason = Test(requirement, personality, context).failure;
    const auto always = ReasonForEveryVersion(type, requirement, personality, context);
    if (always) reason = always;
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
  return {static_cast<std::size_t>(std::ranges::count_if(failures, IsNeverMet)),
          static_cast<std::size_t>(std::ranges::count_if(failures, isOfController)),
          failures.size()};
}

std::string FailureText(const FailedRequirement& failure,
                        const std::optional<ValueOrigin>& location) {
  const FailureWording wording{failure, location};
  switch (failure.reason) {
    case FailureReason::PersonalityLacksKey: return "is missing; " + wording.FoundText();
    case FailureReason::HardwareLacksKey:
      return wording.WantedText() + ", but the controller has none";
    case FailureReason::WrongKind: return wording.WrongKindText();
    case FailureReason::Unequal: return wording.WantedText() + ", finds " + wording.Found();
    case FailureReason::NotNewer: return wording.NotNewerText();
    case FailureReason::EngineeringFirmware: return wording.EngineeringText();
    case FailureReason::AboveInstalled: return wording.BoundText("above");
    case FailureReason::BelowInstalled: return wording.BoundText("below");
    case FailureReason::AboveBoardRevision:
      return wording.Wanted() + " is above the board's revision " + wording.Found();
    case FailureReason::BelowBoardRevision: break;
  }
  return wording.Wanted() + " is below the board's revision " + wording.Found();
}

std::string AtLocation(const std::optional<ValueOrigin>& location) {
  if (location && !location->option.empty()) return " by " + std::string(location->option);
  return location ? " at " + Describe(*location) : "";
}

}  // namespace fernwick::lab
