#include "lab/lint/checks.h"
#include "lab/lint/rules/plan_rules.h"
#include "personality/requirements.h"
#include "plan/plan_values.h"
#include "plan/value_conversions.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

void LintPriority(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* priority = personality.Find("Priority");
  if (priority == nullptr) {
    findings.Add(
        LintRuleOf::NoPriority, personality.offset,
        "without \"Priority\" a match of this personality drives the plan's priority to 0");
    return;
  }
  const auto read = Integer32Of(priority->value);
  if (!NumbersEqual(*priority->value, read)) {
    findings.Add(
        LintRuleOf::AlteredPriority, priority->valueOffset,
        "\"Priority\" is " + Shown(*priority->value) + ", which counts as " + std::to_string(read));
  } else if (read >= PlanValues{}.lowestPriority) {
    findings.Add(LintRuleOf::PriorityWithoutEffect, priority->valueOffset,
                 "\"Priority\" " + Shown(*priority->value) +
                     " never lowers the plan's, which begins at " +
                     std::to_string(PlanValues{}.lowestPriority));
  }
}

void LintFirmwareMode(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* mode = personality.Find("Firmware Mode");
  const auto readBy = FindPersonalityKey("Firmware Mode")->plannedBy;
  if (mode == nullptr || (readBy & personality.type) == 0) return;
  const auto read = Integer32Of(mode->value);
  if (NumbersEqual(*mode->value, read)) return;
  findings.Add(LintRuleOf::AlteredFirmwareMode, mode->valueOffset,
               "\"Firmware Mode\" is " + Shown(*mode->value) + ", which the plan reads as " +
                   std::to_string(read));
}

void LintNvramShapes(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* toSet = personality.Find("SetNVRAM");
  if (toSet != nullptr && !toSet->value->AsDictionary()) {
    findings.Add(LintRuleOf::NvramWrongShape, toSet->valueOffset,
                 "\"SetNVRAM\" is " + Shown(*toSet->value) +
                     ", not a dictionary, so the plan leaves it out");
  }
  const auto* toClear = personality.Find("ClearNVRAM");
  if (toClear == nullptr) return;
  const auto names = toClear->value->AsArray();
  if (!names) {
    findings.Add(LintRuleOf::NvramWrongShape, toClear->valueOffset,
                 "\"ClearNVRAM\" is " + Shown(*toClear->value) +
                     ", not an array, so the plan leaves it out");
    return;
  }
  for (std::size_t i = 0; i < names->size(); ++i) {
    if ((*names)[i].AsString()) continue;
    findings.Add(LintRuleOf::ClearedNameNotText, OffsetOfElement(*toClear, i),
                 Shown((*names)[i]) + " in \"ClearNVRAM\" is not the name of a variable");
  }
}

}  // namespace fernwick::lab
