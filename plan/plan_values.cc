#include "plan/plan_values.h"

#include <algorithm>

#include "plan/value_conversions.h"

namespace fernwick {

void FoldPriority(const MatchRecord& match, PlanValues& plan) {
  plan.lowestPriority = std::min(plan.lowestPriority, Integer32Of(match.Find("Priority")));
}

void MergeNvram(const MatchRecord& match, PlanValues& plan) {
  const auto* toSet = match.Find("SetNVRAM");
  if (const auto variables = toSet == nullptr ? std::nullopt : toSet->AsDictionary()) {
    plan.nvramToSet.Merge(*variables);
  }
  const auto* toClear = match.Find("ClearNVRAM");
  if (const auto names = toClear == nullptr ? std::nullopt : toClear->AsArray()) {
    plan.nvramToClear.insert(plan.nvramToClear.end(), names->begin(), names->end());
  }
}

}  // namespace fernwick
