#include <string>

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/settle/settle_row.h"
#include "lab/survey/text.h"

namespace fernwick::lab {
namespace {

std::string VersionText(const Json& version) {
  return version.is_null() ? "unknown" : CellText(version);
}

std::string RunsText(std::size_t runs) {
  return Counted(runs, "run", "runs");
}

std::string StateText(std::size_t runs) {
  return runs == 0 ? "the recorded state" : "the state after " + RunsText(runs);
}

// "USBC personality 2", from 1.
std::string NumberedPersonality(const std::string& type, std::size_t number) {
  return type + " personality " + std::to_string(number);
}

std::string NumberedPersonality(const MatchInRow& match) {
  return NumberedPersonality(match.type, match.personality);
}

std::string SetText(const MatchInRow& match) {
  return NumberedPersonality(match) + " sets " + VersionText(match.after);
}

std::string OfferText(const MatchInRow& match) {
  return NumberedPersonality(match) + " offers " + VersionText(match.offered);
}

// "23 -> 41.05", "60 -> 44, older".
std::string ChangeText(const Json& before, const Json& after, bool isOlder) {
  return VersionText(before) + " -> " + VersionText(after) + (isOlder ? ", older\n" : "\n");
}

std::string SwitchChangeText(const SwitchChange& change) {
  std::string names;
  for (const auto& name : change.variables) names += (names.empty() ? "" : " and ") + name;
  return "the plan of run " + std::to_string(change.run) + " set " + names;
}

std::string HeadText(const SettleRow& row) {
  const auto runs = " after " + RunsText(row.runs);
  switch (row.outcome) {
    case SettleOutcome::Settled:
    case SettleOutcome::Stuck: return std::string(NameOf(row.outcome)) + runs;
    case SettleOutcome::NeverSettles:
      return "never settles: " + StateText(*row.comesBack) + " comes back" + runs;
    case SettleOutcome::Undecided: return "undecided: not settled" + runs;
    case SettleOutcome::Refused: return "refused: " + PrintableText(row.reason);
    default: break;
  }
  auto text = std::string(NameOf(row.outcome)) + runs;
  if (!row.reason.empty()) text += ": " + PrintableText(row.reason);
  if (row.endedBy) text += ": " + SwitchChangeText(*row.endedBy);
  return text;
}

std::string VariableText(const NvramChange& change) {
  const auto name = PrintableText(change.name);
  if (!change.after) return "clear NVRAM " + name;
  return "set NVRAM " + name + " to " + *change.after;
}

std::string StepText(const StepInRow& step, std::size_t number) {
  auto text = "  run " + std::to_string(number) + "\n";
  for (const auto& match : step.matches) {
    text += "    " + NumberedPersonality(match) + " for " + PrintableText(match.controller) + ": ";
    const bool isAnother = match.changed != match.controller;
    if (isAnother) text += "version of " + PrintableText(match.changed) + " ";
    text += ChangeText(match.before, match.after, match.isOlder);
  }
  for (const auto& change : step.nvram) text += "    " + VariableText(change) + "\n";
  if (step.otherNvram > 0) {
    text +=
        "    " + Counted(step.otherNvram, "more variable changes", "more variables change") + "\n";
  }
  return text;
}

}  // namespace

std::string DescribeCause(const RepetitionInRow& repetition) {
  const auto& match = repetition.match;
  if (repetition.other) return SetText(match) + " and " + SetText(*repetition.other);
  if (repetition.cause == RepetitionCause::NotStorable) {
    return OfferText(match) + ", of which " + VersionText(match.after) + " is stored";
  }
  if (repetition.cause == RepetitionCause::ComparesVersionAbove) {
    return OfferText(match) +
           ", which is compared with the version of the Thunderbolt controller above the port";
  }
  return NumberedPersonality(match) +
         " matches whatever is installed, since the version check is bypassed";
}

std::string DescribeOffer(const StuckInRow& stuck) {
  return "stays at " + VersionText(stuck.installed) + ": " +
         NumberedPersonality(stuck.type, stuck.personality) + " offers " +
         VersionText(stuck.offered);
}

std::string DescribeRow(const SettleRow& row) {
  auto text = PrintableText(row.file) + ": " + HeadText(row) + "\n";
  if (row.steps) {
    for (std::size_t i = 0; i < row.steps->size(); ++i) text += StepText((*row.steps)[i], i + 1);
  }
  for (const auto& controller : row.controllers) {
    if (controller.before == controller.after) continue;
    text += "  " + PrintableText(controller.path) + ": " +
            ChangeText(controller.before, controller.after, controller.isOlder);
  }
  for (const auto& repetition : row.repetitions) {
    text += "  " + PrintableText(repetition.match.changed) + ": " + DescribeCause(repetition);
    const bool isUnchecked = repetition.cause == RepetitionCause::VersionUnchecked;
    if (isUnchecked && row.uncheckedBy) text += ": " + SwitchChangeText(*row.uncheckedBy);
    text += "\n";
  }
  for (const auto& stuck : row.stuck) {
    text += "  " + PrintableText(stuck.controller) + " " + DescribeOffer(stuck) + ", but\n";
    for (const auto& requirement : stuck.requirements) {
      text += "    " + requirement.key + " " + requirement.text + "\n";
    }
  }
  return text;
}

std::string Describe(const SettleTotals& totals) {
  std::size_t computers = 0;
  std::string outcomes;
  for (const auto& [outcome, count] : totals.outcomes) {
    computers += count;
    outcomes += (outcomes.empty() ? ": " : ", ") + std::to_string(count) + " " +
                std::string(NameOf(outcome));
  }
  auto text = Counted(computers, "computer", "computers") + outcomes + "\n";
  for (const auto& [runs, count] : totals.settledAfter) {
    text += "  " + std::to_string(count) + " after " + RunsText(runs) + "\n";
  }
  return text;
}

}  // namespace fernwick::lab
