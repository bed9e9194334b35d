#include "lab/survey/settle/settle_output.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "lab/support/messages.h"

namespace fernwick::lab {
namespace {

// The outcomes that --fail-on can name.
constexpr std::array<std::pair<std::string_view, SettleOutcome>, 4> FailingOutcomes = {
    {{"stuck", SettleOutcome::Stuck},
     {"refused", SettleOutcome::Refused},
     {"abnormal", SettleOutcome::AbnormalEnd},
     {"no-plan", SettleOutcome::NoPlan}}};

// Reads "stuck,refused". Returns the word that is not an outcome; empty when all are.
std::optional<std::string> ParseFailOn(std::string_view list,
                                       std::vector<SettleOutcome>& outcomes) {
  for (;;) {
    const auto word = list.substr(0, list.find(','));
    const auto* const found =
        std::ranges::find(FailingOutcomes, word, [](const auto& each) { return each.first; });
    if (found == FailingOutcomes.end()) return std::string(word);
    outcomes.push_back(found->second);
    if (word.size() == list.size()) return std::nullopt;
    list.remove_prefix(word.size() + 1);
  }
}

int StatusOf(const SettleOutput& output, const SettleTotals& totals, int refusal) {
  if (refusal != LabStatus::Done) return refusal;
  const auto happened = [&](SettleOutcome outcome) { return totals.Count(outcome) > 0; };
  return std::ranges::any_of(output.failOn, happened) ? 1 : LabStatus::Done;
}

}  // namespace

std::string ReadSettleFailOn(SettleOutput& output) {
  const auto word =
      output.failOnList ? ParseFailOn(*output.failOnList, output.failOn) : std::nullopt;
  if (!word) return "";
  return "--fail-on: \"" + *word + "\" is not one of stuck, refused, abnormal, no-plan";
}

int PrintSettled(const SettleOutput& output, const AddAllSettled& addAll) {
  const bool isText = output.format == "text";
  ProcessConsole console;
  SettleTotals totals;
  int refusal = LabStatus::Done;
  const auto add = [&](const SettledComputer& computer) {
    const bool isRefused = computer.isNamed && computer.outcome == SettleOutcome::Refused;
    if (isRefused && refusal == LabStatus::Done) refusal = computer.status.value();
    totals.Add(computer.outcome, computer.runs);
    console.Write(computer.text);
  };
  const int status = addAll(add, console);
  if (status != LabStatus::Done) return status;
  if (isText) console.Write(Describe(totals));
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!isText) console.WriteError(Describe(totals));
  return StatusOf(output, totals, refusal);
}

}  // namespace fernwick::lab
