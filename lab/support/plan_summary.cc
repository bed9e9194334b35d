#include "lab/support/plan_summary.h"

#include <algorithm>
#include <string>

#include "personality/configuration.h"
#include "plan/invocation_builder.h"
#include "plan/plan_values.h"
#include "plan/value_conversions.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

// What the options argument is made of, without the rest of a personality, which may be large.
MatchRecord OptionsOf(const MatchRecord& match) {
  MatchRecord record = {{"Firmware", "image"}};
  for (const auto* key : {"Personality Type", "RID", "Firmware Mode"}) {
    record.SetOrRemove(key, match.Find(key));
  }
  return record;
}

// Each match adds the names of its personality, so that there may be more than anyone would read.
Json NamesToClear(const PlanValues& plan) {
  constexpr std::size_t MaxNames = 10'000;
  auto names = Json::array();
  std::size_t left = 0;
  for (const auto& clearing : plan.clearings) {
    const auto count = std::min(clearing.size(), MaxNames - names.size());
    for (std::size_t i = 0; i < count; ++i) names.push_back(ToJson(clearing[i]));
    left += clearing.size() - count;
  }
  if (left > 0) names.push_back("(" + std::to_string(left) + " more)");
  return names;
}

}  // namespace

std::optional<PlanSummary> SummaryOfPlan(const ToolRun& run) {
  const auto& result = run.result;
  const bool isPlan = !result.fault && !result.bypassesUpdates && !result.matches.empty() &&
                      result.status == ExitStatus::PlanPrinted;
  if (!isPlan) return std::nullopt;
  InvocationBuilder builder("/", result.identity->boardIdString);
  PlanValues plan;
  StringConsole console;
  for (const auto& match : result.matches) {
    FoldPriority(match, plan);
    MergeNvram(match, plan);
    PlanValues none;
    builder.AddMatch(OptionsOf(match), none, false, console);
  }
  builder.FinishInvocation();
  const auto toSet = NvramToSet(plan);
  return PlanSummary{.priority = plan.lowestPriority,
                     .setNvram = ToJson(PropertyValue(Dictionary(toSet))),
                     .clearNvram = NamesToClear(plan),
                     .options = builder.Arguments().back()};
}

Json ToJson(const PlanSummary& plan) {
  return {{"priority", plan.priority},
          {"setNVRAM", plan.setNvram},
          {"clearNVRAM", plan.clearNvram},
          {"options", plan.options}};
}

std::optional<std::string> ImagePath(const MatchedPair& pair, const ToolRun& run,
                                     const std::optional<std::string>& personalitiesDirectory) {
  const auto directory = BoardDirectory(run.result.identity->boardIdString, personalitiesDirectory);
  const auto image = TextOf(pair.match->Find("Firmware")).value_or("");
  if (!directory || image.empty()) return std::nullopt;
  return AppendPathComponent(*directory, image);
}

}  // namespace fernwick::lab
