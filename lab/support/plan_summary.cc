#include "lab/support/plan_summary.h"

#include <span>

#include "personality/configuration.h"
#include "plan/invocation_builder.h"
#include "plan/plan_values.h"
#include "plan/value_conversions.h"
#include "platform/file_system.h"

namespace fernwick::lab {

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
    builder.AddMatch(match, plan, false, console);
  }
  builder.FinishInvocation();
  return PlanSummary{.priority = plan.lowestPriority,
                     .setNvram = ToJson(PropertyValue(Dictionary(plan.nvramToSet))),
                     .clearNvram = ToJson(PropertyValue(Array(std::span(plan.nvramToClear)))),
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
