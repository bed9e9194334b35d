#include "lab/survey/settle/settle_row.h"

#include <algorithm>
#include <array>
#include <utility>

#include "lab/explain/print.h"

namespace fernwick::lab {
namespace {

constexpr std::array<std::string_view, SettleOutcomeCount> OutcomeNames = {
    "settled", "stuck",    "never settles", "undecided",
    "no plan", "bypassed", "refused",       "abnormal end"};

Json MatchJson(const MatchInRow& match) {
  return {{"type", match.type},
          {"personality", match.personality},
          {"controller", match.controller},
          {"changes", match.changed},
          {"offered", match.offered},
          {"before", match.before},
          {"after", match.after},
          {"older", match.isOlder}};
}

Json NvramJson(const NvramChange& change) {
  return {
      {"name", change.name}, {"before", OrNull(change.before)}, {"after", OrNull(change.after)}};
}

Json StepJson(const StepInRow& step) {
  return {{"matches", ListOf(step.matches, MatchJson)},
          {"nvram", ListOf(step.nvram, NvramJson)},
          {"otherNvram", step.otherNvram}};
}

Json RepetitionJson(const RepetitionInRow& repetition) {
  return {{"cause", NameOf(repetition.cause)},
          {"match", MatchJson(repetition.match)},
          {"other", repetition.other ? MatchJson(*repetition.other) : Json(nullptr)}};
}

Json RequirementJson(const RequirementInRow& requirement) {
  return {{"key", requirement.key},       {"reason", requirement.reason},
          {"text", requirement.text},     {"location", LocationJson(requirement.origin)},
          {"wanted", requirement.wanted}, {"found", requirement.found}};
}

Json StuckJson(const StuckInRow& stuck) {
  return {{"controller", stuck.controller},
          {"type", stuck.type},
          {"personality", stuck.personality},
          {"offered", stuck.offered},
          {"installed", stuck.installed},
          {"failures", ListOf(stuck.requirements, RequirementJson)}};
}

Json ControllerJson(const ControllerInRow& controller) {
  return {{"entry", controller.path},
          {"kind", controller.isPort ? "port" : "thunderbolt"},
          {"before", controller.before},
          {"after", controller.after},
          {"older", controller.isOlder}};
}

Json SwitchJson(const std::optional<SwitchChange>& change) {
  if (!change) return nullptr;
  return {{"run", change->run}, {"variables", change->variables}};
}

}  // namespace

std::string_view NameOf(SettleOutcome outcome) {
  return OutcomeNames[static_cast<std::size_t>(outcome)];
}

std::optional<SettleOutcome> SettleOutcomeNamed(std::string_view name) {
  const auto* const found = std::ranges::find(OutcomeNames, name);
  if (found == OutcomeNames.end()) return std::nullopt;
  return static_cast<SettleOutcome>(found - OutcomeNames.begin());
}

Json ToJson(const SettleRow& row) {
  return {{"file", row.file},
          {"outcome", NameOf(row.outcome)},
          {"status", OrNull(row.status)},
          {"reason", TextOrNull(row.reason)},
          {"board", OrNull(row.board)},
          {"revision", OrNull(row.revision)},
          {"runs", row.runs},
          {"comesBack", OrNull(row.comesBack)},
          {"endedBy", SwitchJson(row.endedBy)},
          {"uncheckedBy", SwitchJson(row.uncheckedBy)},
          {"controllers", ListOf(row.controllers, ControllerJson)},
          {"causes", ListOf(row.repetitions, RepetitionJson)},
          {"stuck", ListOf(row.stuck, StuckJson)},
          {"steps", row.steps ? ListOf(*row.steps, StepJson) : Json(nullptr)},
          {"changes", row.changes}};
}

bool SettleTotals::IsSettled(SettleOutcome outcome) {
  return outcome == SettleOutcome::Settled || outcome == SettleOutcome::Stuck;
}

void SettleTotals::Add(SettleOutcome outcome, std::size_t runs) {
  ++outcomes[outcome];
  if (IsSettled(outcome)) ++settledAfter[runs];
  const bool isEnded = outcome == SettleOutcome::Bypassed || outcome == SettleOutcome::AbnormalEnd;
  if (isEnded && runs > 0) ++endedByPlans;
}

std::size_t SettleTotals::Count(SettleOutcome outcome) const {
  const auto found = outcomes.find(outcome);
  return found == outcomes.end() ? 0 : found->second;
}

}  // namespace fernwick::lab
