#include "lab/survey/settle/settle_output.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "lab/support/command_line.h"
#include "lab/support/json_reading.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/selected.h"

namespace fernwick::lab {
namespace {

// The outcomes that --fail-on can name.
constexpr std::array<std::pair<std::string_view, SettleOutcome>, 5> FailingOutcomes = {
    {{"stuck", SettleOutcome::Stuck},
     {"refused", SettleOutcome::Refused},
     {"abnormal", SettleOutcome::AbnormalEnd},
     {"no-plan", SettleOutcome::NoPlan},
     {"bypassed", SettleOutcome::Bypassed}}};

int StatusOf(const SettleOutput& output, const SettleTotals& totals, int refusal) {
  if (refusal != LabStatus::Done) return refusal;
  const auto happened = [&](SettleOutcome outcome) { return totals.Count(outcome) > 0; };
  const bool fails = totals.endedByPlans > 0 || std::ranges::any_of(output.failOn, happened);
  return fails ? LabStatus::Negative : LabStatus::Done;
}

// What the text begins with.
std::string Describe(const std::vector<std::string>& changes) {
  std::string text;
  for (const auto& change : changes) text += "Changed by " + PrintableText(change) + "\n";
  return text;
}

}  // namespace

std::string ReadSettleFailOn(SettleOutput& output) {
  if (!output.failOnList) return "";
  for (const auto word : WordsOf(*output.failOnList)) {
    const auto* const found =
        std::ranges::find(FailingOutcomes, word, [](const auto& each) { return each.first; });
    if (found == FailingOutcomes.end()) {
      return "--fail-on: \"" + std::string(word) +
             "\" is not one of stuck, refused, abnormal, no-plan, bypassed";
    }
    output.failOn.push_back(found->second);
  }
  return "";
}

SettledComputer SettledOf(const SettleRow& row, bool isNamed) {
  return {row.outcome, row.runs, row.status, isNamed, row.changes};
}

std::optional<SettledComputer> SettledOf(const Json& row, bool isNamed) {
  const auto& name = MemberOf(row, "outcome");
  const auto& runs = MemberOf(row, "runs");
  const auto& status = MemberOf(row, "status");
  const auto changes = StringsOf(MemberOf(row, "changes"));
  if (!name.is_string() || !runs.is_number_unsigned() || !changes) return std::nullopt;
  const auto outcome = SettleOutcomeNamed(name.get<std::string>());
  const bool hasStatus = status.is_number_integer();
  if (!outcome || (outcome == SettleOutcome::Refused && !hasStatus)) return std::nullopt;
  return SettledComputer{*outcome, runs.get<std::size_t>(),
                         hasStatus ? std::optional(status.get<int>()) : std::nullopt, isNamed,
                         *changes};
}

int PrintSettled(const SettleOutput& output, const AddAllSettled& addAll) {
  const bool isText = output.format == "text";
  ProcessConsole console;
  SettleTotals totals;
  std::set<std::string> unapplied(output.changes.begin(), output.changes.end());
  auto head = isText ? Describe(output.changes) : "";
  FirstRefusal refusal;
  const auto add = [&](const SettledComputer& computer) {
    if (computer.outcome == SettleOutcome::Refused) {
      refusal.Add(computer.isNamed, computer.status.value());
    }
    totals.Add(computer.outcome, computer.runs);
    for (const auto& change : computer.changes) unapplied.erase(change);
    console.Write(std::exchange(head, "") + computer.text);
  };
  const int status = addAll(add, console);
  if (status != LabStatus::Done) return status;
  if (isText) console.Write(Describe(totals));
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!isText) console.WriteError(Describe(totals));
  const bool isComplete = refusal.Status() == LabStatus::Done && !output.isShard;
  if (!isComplete || unapplied.empty()) return StatusOf(output, totals, refusal.Status());
  PrintError(*unapplied.begin() + ": it applies to no computer");
  return LabStatus::UnreadableInput;
}

}  // namespace fernwick::lab
