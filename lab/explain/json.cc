#include <sstream>

#include "lab/explain/print.h"
#include "lab/support/json_stream.h"
#include "lab/support/json_values.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

template <typename Range, typename Convert>
Json ListOf(const Range& range, Convert convert) {
  auto list = Json::array();
  for (const auto& each : range) list.push_back(convert(each));
  return list;
}

Json OrNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

Json ValueOrNull(const std::optional<PropertyValue>& value) {
  return value ? ToJson(*value) : Json(nullptr);
}

Json PlaceJson(const std::optional<FilePlace>& place) {
  if (!place) return nullptr;
  if (place->line == 0) return {{"byte", place->byte}};
  return {{"line", place->line}, {"column", place->column}};
}

Json TypesJson(TypeSet types) {
  return ListOf(NamesOf(types), [](std::string_view name) { return Json(name); });
}

Json SourceJson(const ExplainedSource& source) {
  return {{"entry", source.path},
          {"property", source.property},
          {"value", ValueOrNull(source.value)},
          {"conversion", source.conversion}};
}

Json FailureJson(const ExplainedFailure& failure) {
  const auto& requirement = failure.requirement;
  Json json = {{"check", requirement.check},
               {"key", requirement.key},
               {"shortfall", NameOf(requirement.shortfall)},
               {"wanted", ValueOrNull(requirement.wanted)},
               {"place", PlaceJson(failure.wantedPlace)},
               {"found", ValueOrNull(requirement.found)},
               {"foundIn", requirement.hardwareKey},
               {"sources", ListOf(*failure.sources, SourceJson)}};
  if (failure.isUuidUnread) json["uuidUnread"] = true;
  return json;
}

Json PairJson(const ExplainedPair& pair) {
  Json json = {{"personality", pair.personality + 1}, {"outcome", NameOf(pair.outcome)}};
  if (pair.outcome == PairOutcome::Rejected) {
    json["failures"] = ListOf(pair.failures, FailureJson);
  }
  return json;
}

Json OmissionJson(const ExplainedOmission& omission) {
  return {{"entry", omission.path},
          {"why", NameOf(omission.why)},
          {"sources", ListOf(omission.sources, SourceJson)}};
}

Json UnreadJson(const UnreadKey& unread) {
  return {{"key", unread.key},
          {"place", PlaceJson(unread.place)},
          {"readBy", TypesJson(unread.readBy)}};
}

Json PersonalityJson(const ExplainedPersonality& personality) {
  return {{"place", PlaceJson(personality.place)},
          {"firmware", ValueOrNull(personality.firmware)},
          {"unread", ListOf(personality.unread, UnreadJson)}};
}

void PrintController(const ExplainedController& controller, JsonStream& stream) {
  stream.Begin('{');
  stream.AddMembers({{"kind", controller.isPort ? "port" : "thunderbolt"},
                     {"entry", controller.path},
                     {"record", ToJson(controller.record)}});
  stream.Begin("pairs", '[');
  for (const auto& pair : controller.pairs) stream.Add(PairJson(pair));
  stream.End();
  stream.End();
}

void PrintKey(const ExplainedKey& key, JsonStream& stream) {
  stream.Begin('{');
  stream.AddMembers({{"key", key.key},
                     {"place", PlaceJson(key.place)},
                     {"isType", key.type != Types::None},
                     {"hasShape", key.hasShape},
                     {"personalities", ListOf(key.personalities, PersonalityJson)},
                     {"passedOver", ListOf(key.omitted, OmissionJson)}});
  stream.Begin("controllers", '[');
  for (const auto& controller : key.controllers) PrintController(controller, stream);
  stream.End();
  stream.End();
}

Json LinesOf(const std::string& text) {
  auto lines = Json::array();
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

Json BoardJson(const BoardIdentity& identity) {
  return {{"id", OrNull(identity.boardIdString)},
          {"number", identity.boardId},
          {"revision", identity.boardRevision}};
}

Json OutcomeJson(const Explanation& explanation) {
  const bool isAbnormal = explanation.end == RunEnd::Abnormal;
  Json json = {{"end", NameOf(explanation.end)},
               {"status", isAbnormal ? Json(nullptr) : Json(explanation.run.status)},
               {"matches", explanation.matchCount},
               {"plannedMatches", explanation.plannedMatchCount},
               {"standardError", LinesOf(explanation.run.standardError)}};
  if (!isAbnormal) return json;
  json["fault"] = explanation.fault;
  json["sources"] = ListOf(explanation.faultSources, SourceJson);
  return json;
}

}  // namespace

std::string_view NameOf(RunEnd end) {
  switch (end) {
    case RunEnd::Planned: return "planned";
    case RunEnd::NothingMatched: return "nothingMatched";
    case RunEnd::NoFirmware: return "noFirmware";
    case RunEnd::NoDictionary: return "noDictionary";
    case RunEnd::NoConfiguration: return "noConfiguration";
    case RunEnd::Bypassed: return "bypassed";
    case RunEnd::Abnormal: break;
  }
  return "abnormal";
}

std::string_view NameOf(PairOutcome outcome) {
  switch (outcome) {
    case PairOutcome::Matched: return "matched";
    case PairOutcome::Rejected: return "rejected";
    case PairOutcome::NotReached: return "notReached";
    case PairOutcome::NotAPersonality: break;
  }
  return "notAPersonality";
}

std::string_view NameOf(Shortfall shortfall) {
  switch (shortfall) {
    case Shortfall::PersonalityLacksKey: return "personalityLacksKey";
    case Shortfall::HardwareLacksKey: return "hardwareLacksKey";
    case Shortfall::WrongKind: return "wrongKind";
    case Shortfall::Unequal: return "unequal";
    case Shortfall::NotNewer: return "notNewer";
    case Shortfall::EngineeringFirmware: return "engineeringFirmware";
    case Shortfall::AboveInstalled: return "aboveInstalled";
    case Shortfall::BelowInstalled: return "belowInstalled";
    case Shortfall::AboveBoardRevision: return "aboveBoardRevision";
    case Shortfall::BelowBoardRevision: break;
  }
  return "belowBoardRevision";
}

std::string_view NameOf(Omission why) {
  switch (why) {
    case Omission::NotAtRootOfTopology: return "notAtRootOfTopology";
    case Omission::RouteString: return "routeString";
    case Omission::AddressBelowThunderbolt: break;
  }
  return "addressBelowThunderbolt";
}

void PrintExplanationJson(const Explanation& explanation, const TextSink& sink) {
  JsonStream stream(sink);
  stream.Begin('{');
  stream.AddMembers({{"board", BoardJson(explanation.identity)},
                     {"configuration", OrNull(explanation.configurationPath)},
                     {"versionCheck",
                      {{"bypassed", explanation.bypassesVersionCheck},
                       {"byOption", explanation.optionBypassesVersion},
                       {"bySwitch", explanation.switchBypassesVersion}}},
                     {"outcome", OutcomeJson(explanation)}});
  stream.Begin("keys", '[');
  for (const auto& key : explanation.keys) PrintKey(key, stream);
  stream.End();
  stream.End();
}

}  // namespace fernwick::lab
