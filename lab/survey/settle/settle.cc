#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/json_values.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/settle/settle_computer.h"
#include "lab/survey/settle/settle_row.h"
#include "lab/verbs.h"
#include "lab/what_if/changed_configurations.h"
#include "lab/what_if/changes.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints what happens to recorded computers when every plan for them is carried out: the run is "
    "repeated until nothing is planned or a state of the computer comes back. A match sets the "
    "version of its controller to the greatest that the controller can store and that is at most "
    "the one of the personality; then the NVRAM variables of the plan are set and cleared.";

std::string Footer() {
  return std::string(SelectionHelp) + "\n" + WhatIfHelp +
         "\nA computer is settled after as many runs as planned something. It is stuck when it is "
         "settled\nbelow a version of a personality that is for its controllers. It never settles "
         "when a state comes\nback, and is undecided after 1,000 runs, or after 4 or more that "
         "tested more than 20,000,000\npairs of a controller and a personality (200,000 where the "
         "version check is bypassed). The other\noutcomes are no plan (there is no configuration "
         "for the board, or a match names no image),\nbypassed, refused and abnormal end. The "
         "totals follow the text, and are on standard error for\nndjson.\n\n"
         "Status, after all computers: 65 or 66 when a RECORDING that is named on the command line "
         "is\nrefused or cannot be read; 1 when a computer never settles or is undecided, when a "
         "plan bypasses\nfurther updates or makes the tool end abnormally, or when there is an "
         "outcome of --fail-on;\notherwise 0.\n\n"
         "Example:\n"
         "  fernwick-lab settle -p payload computers/\n"
         "  fernwick-lab settle -p payload --personality USBC:2:Version=180 computers/\n";
}

struct SettleArguments {
  std::string payload;
  bool bypassVersion = false;
  bool listsSteps = false;
  std::string format = "text";
  bool asJson = false;
  std::optional<std::string> failOnList;
  std::vector<SettleOutcome> failOn = {SettleOutcome::NeverSettles, SettleOutcome::Undecided};
  WhatIfArguments whatIf;
  BatchOptions batch;
};

// The outcomes that --fail-on can name.
constexpr std::array<std::pair<std::string_view, SettleOutcome>, 5> FailingOutcomes = {
    {{"stuck", SettleOutcome::Stuck},
     {"refused", SettleOutcome::Refused},
     {"abnormal", SettleOutcome::AbnormalEnd},
     {"no-plan", SettleOutcome::NoPlan},
     {"bypassed", SettleOutcome::Bypassed}}};

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

CommandLine CommandLineOf(SettleArguments& into) {
  CommandLine line = {
      .verb = "settle",
      .description = Description,
      .footer = Footer(),
      .arguments = {
          {.name = "-p,--payload",
           .target = &into.payload,
           .help = "the payload directory",
           .least = 1,
           .valueName = "PAYLOAD"},
          {.name = "--bypassVersion",
           .target = &into.bypassVersion,
           .help = "as the tool's own, in every run"},
          {.name = "--each", .target = &into.listsSteps, .help = "print every run of a computer"},
          {.name = "--format",
           .target = &into.format,
           .help = "text or ndjson",
           .valueName = "FORMAT",
           .choices = {"text", "ndjson"}},
          {.name = "--json", .target = &into.asJson, .help = "the same as --format ndjson"},
          {.name = "--fail-on",
           .target = &into.failOnList,
           .help = "status 1 on any of these outcomes, too: stuck, refused, abnormal, no-plan, "
                   "bypassed",
           .valueName = "OUTCOME,..."},
      }};
  AddWhatIfOptions(line, into.whatIf);
  AddBatchOptions(line, into.batch);
  return line;
}

int RefuseUsage(const std::string& error) {
  PrintError(error + "; see fernwick-lab settle --help");
  return LabStatus::BadUsage;
}

int StatusOf(const SettleArguments& arguments, const SettleTotals& totals, int refusal) {
  if (refusal != LabStatus::Done) return refusal;
  const auto happened = [&](SettleOutcome outcome) { return totals.Count(outcome) > 0; };
  const bool fails = totals.endedByPlans > 0 || std::ranges::any_of(arguments.failOn, happened);
  return fails ? 1 : LabStatus::Done;
}

int SettleAll(const SettleArguments& arguments, const Changes& changes) {
  const auto options = ToolOptions(arguments.payload, arguments.bypassVersion);
  ChangedConfigurations configurations(changes);
  const SettleWork each = {options, changes, configurations, arguments.listsSteps};
  const bool isText = !arguments.asJson && arguments.format == "text";
  ProcessConsole console;
  SettleTotals totals;
  int refusal = LabStatus::Done;
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    const auto row = SettleComputer(std::move(selected), each);
    if (!row) return row.Error();
    const bool isRefused = row->outcome == SettleOutcome::Refused;
    const std::function<void()> print =
        [&, refused = isRefused && isNamed ? *row->status : LabStatus::Done, outcome = row->outcome,
         runs = row->runs, text = isText ? DescribeRow(*row) : PrintJsonRow(ToJson(*row))] {
          if (refusal == LabStatus::Done) refusal = refused;
          totals.Add(outcome, runs);
          console.Write(text);
        };
    return print;
  };
  const int status = RunBatch(arguments.batch, work, console);
  if (status != LabStatus::Done) return status;
  if (isText) console.Write(Describe(totals));
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!isText) console.WriteError(Describe(totals));
  return StatusOf(arguments, totals, refusal);
}

}  // namespace

VerbEnd SettleVerb(int argumentCount, char* const arguments[]) {
  SettleArguments parsed;
  const auto line = CommandLineOf(parsed);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto word =
      parsed.failOnList ? ParseFailOn(*parsed.failOnList, parsed.failOn) : std::nullopt;
  if (word) {
    return RefuseUsage("--fail-on: \"" + *word +
                       "\" is not one of stuck, refused, abnormal, no-plan, bypassed");
  }
  const auto changes = ParseChanges(parsed.whatIf);
  if (!changes) return RefuseUsage(changes.Error().message);
  if (!IsPayload(parsed.payload)) return LabStatus::UnreadableInput;
  return SettleAll(parsed, *changes);
}

}  // namespace fernwick::lab
