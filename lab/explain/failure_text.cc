#include "lab/explain/failure_text.h"

#include "lab/support/messages.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

// Ids are known to people in hexadecimal.
std::string ValueText(std::string_view key, const PropertyValue& value) {
  return key.ends_with("ID") ? InlineTextWithHex(value) : InlineText(value);
}

std::string Wanted(const ExplainedFailure& failure) {
  const auto& requirement = failure.requirement;
  return ValueText(requirement.key, requirement.wanted.value()) + AtPlace(failure.wantedPlace);
}

std::string PropertyText(const ExplainedSource& source) {
  return "\"" + source.property + "\" of " + PrintableText(source.name);
}

// Of a property that gives no value: it is not there, or of a kind that says nothing.
std::string UselessSourceText(const ExplainedSource& source) {
  auto text = PropertyText(source);
  if (!source.value) return text + " is absent";
  return text + " is " + std::string(KindOf(*source.value)) + ", " + InlineText(*source.value);
}

std::string Found(const ExplainedFailure& failure) {
  return ValueText(failure.requirement.key, failure.requirement.found.value());
}

std::string HardwareSide(const ExplainedFailure& failure) {
  if (failure.requirement.found) return "the controller has " + Found(failure);
  return "the controller has none either";
}

// "wants 5 at 9:4", "wants one of [5, 6] at 9:4".
std::string Wish(const ExplainedFailure& failure) {
  const auto* list = failure.requirement.wanted->AsArray();
  return (list == nullptr ? "wants " : "wants one of ") + Wanted(failure);
}

std::string Age(const ExplainedFailure& failure) {
  const char* verdict =
      failure.requirement.wanted->IsNumber() ? " is not" : " is no number and not";
  return Wanted(failure) + verdict + " newer than the installed " + Found(failure);
}

// The personality may lack its version, which is a failure of its own.
std::string Engineering(const ExplainedFailure& failure) {
  const auto wish = failure.requirement.wanted ? Wish(failure) + ", but " : "";
  return wish + "engineering firmware is installed, marked " + Found(failure);
}

std::string WrongKind(const ExplainedFailure& failure) {
  const auto* key = FindPersonalityKey(failure.requirement.key);
  const bool isOfBoard = failure.requirement.hardwareKey.empty();
  return Wanted(failure) + " is not " + std::string(WordsFor(key->kind)) + "; the " +
         (isOfBoard ? "board's revision is " : "controller has ") + Found(failure);
}

}  // namespace

std::string FailureText(const ExplainedFailure& failure) {
  switch (failure.requirement.shortfall) {
    case Shortfall::PersonalityLacksKey: return "is missing; " + HardwareSide(failure);
    case Shortfall::HardwareLacksKey: return Wish(failure) + ", but the controller has none";
    case Shortfall::WrongKind: return WrongKind(failure);
    case Shortfall::Unequal: return Wish(failure) + ", finds " + Found(failure);
    case Shortfall::NotNewer: return Age(failure);
    case Shortfall::EngineeringFirmware: return Engineering(failure);
    case Shortfall::AboveInstalled:
      return Wanted(failure) + " is above the installed " + Found(failure);
    case Shortfall::BelowInstalled:
      return Wanted(failure) + " is below the installed " + Found(failure);
    case Shortfall::AboveBoardRevision:
      return Wanted(failure) + " is above the board's revision " + Found(failure);
    case Shortfall::BelowBoardRevision: break;
  }
  return Wanted(failure) + " is below the board's revision " + Found(failure);
}

std::vector<std::string> SourceLines(const ExplainedFailure& failure) {
  const auto& requirement = failure.requirement;
  if (failure.isUuidUnread) return {"its \"UUID\" is not read, as an earlier port has none"};
  if (failure.sources->empty()) return {"there is no Thunderbolt controller above it"};
  std::vector<std::string> lines;
  for (const auto& source : *failure.sources) {
    lines.push_back(requirement.found ? SourceText(source) : UselessSourceText(source));
  }
  return lines;
}

std::string SourceText(const ExplainedSource& source) {
  auto text = PropertyText(source);
  if (!source.value) return text + " is absent";
  text += " is " + InlineTextWithHex(*source.value);
  if (!source.conversion.empty()) text += ": " + source.conversion;
  return text;
}

std::string AtPlace(const std::optional<FilePlace>& place) {
  return place ? " at " + Describe(*place) : "";
}

}  // namespace fernwick::lab
