#include "lab/explain/failed_requirement.h"

#include <algorithm>

#include "lab/support/configuration_file.h"
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
    return Wanted() + " is not " + std::string(WordsFor(key->kind)) + "; the " +
           (isOfBoard ? "board's revision is " : "controller has ") + Found();
  }
};

}  // namespace

std::vector<FailedRequirement> FailedRequirements(TypeSet type, Dictionary personality,
                                                  const RequirementContext& context) {
  std::vector<FailedRequirement> failures;
  for (const auto& requirement : RequirementsOf(type)) {
    const auto reason = Test(requirement, personality, context).failure;
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
    case FailureReason::AboveInstalled:
      return sides.Wanted() + " is above the installed " + sides.Found();
    case FailureReason::BelowInstalled:
      return sides.Wanted() + " is below the installed " + sides.Found();
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
