#include <sstream>

#include "lab/explain/print.h"
#include "lab/support/json_stream.h"
#include "lab/support/json_values.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

Json AsJson(std::string_view text) {
  return Json(text);  // NOLINT: in braces it would be an array
}

Json TypesJson(TypeSet types) {
  return ListOf(NamesOf(types), AsJson);
}

Json SourceJson(const ExplainedSource& source) {
  return {{"entry", source.path},
          {"property", source.property},
          {"value", ValueOrNull(source.value)},
          {"conversion", source.conversion}};
}

Json FailureJson(const ExplainedFailure& failure, const ExplainedController& controller) {
  const auto& [requirement, reason, wanted, found] = failure.failed;
  Json json = {{"check", requirement->type},
               {"key", requirement->key},
               {"reason", NameOf(reason)},
               {"wanted", ValueOrNull(wanted)},
               {"location", LocationJson(failure.wantedLocation)},
               {"found", ValueOrNull(found)},
               {"hardwareKey", requirement->hardwareKey},
               {"sources", ListOf(controller.sources.at(requirement->hardwareKey), SourceJson)}};
  if (IsUuidUnread(failure.failed, controller)) json["uuidUnread"] = true;
  return json;
}

Json PairJson(const ExplainedPair& pair, const ExplainedController& controller) {
  Json json = {{"personality", pair.personality + 1}, {"outcome", NameOf(pair.outcome)}};
  const bool isTested = pair.outcome != PairOutcome::NotAPersonality;
  if (!isTested || (pair.outcome == PairOutcome::Matched && pair.failures.empty())) return json;
  json["failures"] = ListOf(pair.failures, [&](const ExplainedFailure& failure) {
    return FailureJson(failure, controller);
  });
  return json;
}

Json SkipJson(const ExplainedSkip& skip) {
  return {{"entry", skip.path},
          {"reason", NameOf(skip.reason)},
          {"sources", ListOf(skip.sources, SourceJson)}};
}

Json UnreadJson(const UnreadKey& unread) {
  return {{"key", unread.key},
          {"location", LocationJson(unread.location)},
          {"readBy", TypesJson(unread.readBy)}};
}

Json PersonalityJson(const ExplainedPersonality& personality) {
  return {{"location", LocationJson(personality.location)},
          {"firmware", ValueOrNull(personality.firmware)},
          {"unread", ListOf(personality.unread, UnreadJson)}};
}

void PrintController(const ExplainedController& controller, JsonStream& stream) {
  stream.Begin('{');
  stream.AddMembers({{"number", controller.number},
                     {"kind", controller.isPort ? "port" : "thunderbolt"},
                     {"entry", controller.path},
                     {"record", ToJson(PropertyValue(controller.record))}});
  stream.Begin("pairs", '[');
  for (const auto& pair : controller.pairs) stream.Add(PairJson(pair, controller));
  stream.End();
  stream.AddMembers({{"otherPairs", controller.otherPairs}});
  stream.End();
}

void PrintKey(const ExplainedKey& key, JsonStream& stream) {
  if (!key.isSelected) return;
  stream.Begin('{');
  stream.AddMembers({{"key", key.key},
                     {"location", LocationJson(key.location)},
                     {"isType", key.type != Types::None},
                     {"hasShape", key.hasExpectedShape}});
  stream.Begin("personalities", '[');
  for (const auto& personality : key.personalities) stream.Add(PersonalityJson(personality));
  stream.End();
  stream.AddMembers({{"skipped", ListOf(key.skipped, SkipJson)}});
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
  const auto& result = explanation.run.result;
  Json json = {{"end", NameOf(explanation.end)},
               {"status", result.fault ? Json(nullptr) : Json(result.status)},
               {"matches", result.matches.size()},
               {"plannedMatches", result.plannedMatches},
               {"standardError", LinesOf(explanation.run.standardError)}};
  if (!result.fault) return json;
  json["fault"] = Describe(*result.fault);
  json["sources"] = ListOf(explanation.faultSources, SourceJson);
  return json;
}

Json SwitchJson(const ActiveSwitch& set) {
  return {{"name", set.name},
          {"setBy", set.isBootArgument ? "bootArgument" : "nvramVariable"},
          {"source", SourceJson(set.source)}};
}

Json ImageJson(const PlannedImage& image) {
  return {{"key", image.key},
          {"personality", image.number},
          {"entry", image.controller},
          {"installed", ValueOrNull(image.installed)},
          {"version", ValueOrNull(image.version)},
          {"path", image.path},
          {"missing", image.isMissing}};
}

Json PlanJson(const std::optional<ExplainedPlan>& plan) {
  if (!plan) return nullptr;
  auto json = ToJson(plan->summary);
  json["images"] = ListOf(plan->images, ImageJson);
  return json;
}

void PrintMembers(const Explanation& explanation, JsonStream& stream) {
  const auto& result = explanation.run.result;
  stream.AddMembers({{"board", BoardJson(explanation.identity)},
                     {"configuration", OrNull(explanation.configurationPath)},
                     {"nearBoards", ListOf(explanation.nearBoards, AsJson)},
                     {"versionCheck",
                      {{"bypassed", result.bypassesVersionCheck},
                       {"byOption", explanation.optionBypassesVersion},
                       {"bySwitch", result.switchBypassesVersion}}},
                     {"switches", ListOf(explanation.switches, SwitchJson)},
                     {"outcome", OutcomeJson(explanation)},
                     {"plan", PlanJson(explanation.plan)}});
  stream.Begin("keys", '[');
  for (const auto& key : explanation.keys) PrintKey(key, stream);
  stream.End();
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

std::string_view NameOf(FailureReason reason) {
  switch (reason) {
    case FailureReason::PersonalityLacksKey: return "personalityLacksKey";
    case FailureReason::HardwareLacksKey: return "hardwareLacksKey";
    case FailureReason::WrongKind: return "wrongKind";
    case FailureReason::Unequal: return "unequal";
    case FailureReason::NotNewer: return "notNewer";
    case FailureReason::EngineeringFirmware: return "engineeringFirmware";
    case FailureReason::AboveInstalled: return "aboveInstalled";
    case FailureReason::BelowInstalled: return "belowInstalled";
    case FailureReason::AboveBoardRevision: return "aboveBoardRevision";
    case FailureReason::BelowBoardRevision: break;
  }
  return "belowBoardRevision";
}

std::string_view NameOf(SkipReason reason) {
  switch (reason) {
    case SkipReason::NotAtRootOfTopology: return "notAtRootOfTopology";
    case SkipReason::RouteString: return "routeString";
    case SkipReason::AddressBelowThunderbolt: break;
  }
  return "addressBelowThunderbolt";
}

Json LocationJson(const std::optional<ValueOrigin>& location) {
  if (!location) return nullptr;
  if (!location->option.empty()) return {{"option", location->option}};
  if (location->line == 0) return {{"byte", location->byte}};
  return {{"line", location->line}, {"column", location->column}};
}

void PrintExplanationJson(const Explanation& explanation, const TextSink& sink) {
  JsonStream stream(sink);
  stream.Begin('{');
  if (!explanation.changes.empty()) {
    stream.AddMembers({{"changes", ListOf(explanation.changes, AsJson)}});
  }
  PrintMembers(explanation, stream);
  if (explanation.withoutSwitch) {
    stream.Begin("withoutSwitch", '{');
    PrintMembers(*explanation.withoutSwitch, stream);
    stream.End();
  } else {
    stream.AddMembers({{"withoutSwitch", nullptr}});
  }
  stream.End();
}

}  // namespace fernwick::lab
