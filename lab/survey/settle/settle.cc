#include <functional>
#include <string>
#include <utility>

#include "lab/support/command_line.h"
#include "lab/support/json_values.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/settle/settle_computer.h"
#include "lab/survey/settle/settle_output.h"
#include "lab/survey/settle/settle_row.h"
#include "lab/survey/shards/shard_result.h"
#include "lab/survey/shards/sharded_batch.h"
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
         "\n"
         "A computer is settled after as many runs as planned something. It is stuck when it is\n"
         "settled, but a personality for one of its controllers offers a newer version than is\n"
         "installed. A personality is for a controller that has the values it lists (silicon,\n"
         "RID, address and the like) and could match it with other firmware installed; one for\n"
         "other board revisions counts only where none is for this one. A computer never\n"
         "settles when a state comes back, and is undecided after 1,000 runs, or after 4 or\n"
         "more that tested more than 20,000,000 pairs of a controller and a personality\n"
         "(200,000 where the version check is bypassed). The other outcomes are no plan (there\n"
         "is no configuration for the board, or a match names no image), bypassed, refused and\n"
         "abnormal end. The totals follow the text, and are on standard error for ndjson.\n"
         "\n"
         "Status, after all computers: 65 or 66 when a RECORDING that is named on the command\n"
         "line is refused or cannot be read; 1 when a computer never settles or is undecided,\n"
         "when a plan bypasses further updates or makes the tool end abnormally, or when there\n"
         "is an outcome of --fail-on; otherwise 0.\n"
         "\n"
         "Example:\n"
         "  fernwick-lab settle -p payload computers/\n"
         "  fernwick-lab settle -p payload --personality LegacyUSBC:1:Version=180 computers/\n";
}

struct SettleArguments {
  std::string payload;
  bool bypassVersion = false;
  bool listsSteps = false;
  bool asJson = false;
  SettleOutput output;
  WhatIfArguments whatIf;
  BatchOptions batch;
};

CommandLine CommandLineOf(SettleArguments& into) {
  CommandLine line = {
      .verb = "settle",
      .description = Description,
      .footer = Footer(),
      .arguments = {
          PayloadArgument(into.payload),
          BypassVersionArgument(into.bypassVersion, "as the tool's own, in every run"),
          {.name = "--each", .target = &into.listsSteps, .help = "print every run of a computer"},
          {.name = "--format",
           .target = &into.output.format,
           .help = "text or ndjson",
           .valueName = "FORMAT",
           .choices = {"text", "ndjson"}},
          {.name = "--json", .target = &into.asJson, .help = "the same as --format ndjson"},
          {.name = "--fail-on",
           .target = &into.output.failOnList,
           .help = "status 1 on any of these outcomes, too: stuck, refused, abnormal, no-plan, "
                   "bypassed",
           .valueName = "OUTCOME,..."},
      }};
  AddWhatIfOptions(line, into.whatIf);
  AddBatchOptions(line, into.batch);
  AddShardOption(line, into.batch);
  return line;
}

int RefuseUsage(const std::string& error) {
  PrintError(error + "; see fernwick-lab settle --help");
  return LabStatus::BadUsage;
}

// What is wrong with the options together; empty when nothing is.
std::string Check(SettleArguments& arguments) {
  if (arguments.asJson) arguments.output.format = "ndjson";
  auto error = ReadSettleFailOn(arguments.output);
  if (error.empty()) error = ReadShard(arguments.batch);
  const bool isShard = arguments.batch.limits.shard.has_value();
  if (!error.empty() || !isShard || arguments.output.format == "ndjson") return error;
  return "--shard needs --format ndjson";
}

int AddRows(const SettleArguments& arguments, const Changes& changes, const AddSettled& add,
            Console& console) {
  const auto options = ToolOptions(arguments.payload, arguments.bypassVersion);
  ChangedConfigurations configurations(changes);
  const SettleWork each = {options, changes, configurations, arguments.listsSteps};
  const bool isShard = arguments.batch.limits.shard.has_value();
  const bool isText = arguments.output.format == "text";
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    const auto index = selected.index;
    const auto row = SettleComputer(std::move(selected), each);
    if (!row) return row.Error();
    auto computer = SettledOf(*row, isNamed);
    if (isShard) {
      computer.text = PrintShardRow(index, isNamed, ToJson(*row), {{"text", DescribeRow(*row)}});
    } else {
      computer.text = isText ? DescribeRow(*row) : PrintJsonRow(ToJson(*row));
    }
    const std::function<void()> print = [&, computer = std::move(computer)] { add(computer); };
    return print;
  };
  const ShardFrame frame = {.verb = "settle",
                            .payload = arguments.payload,
                            .options = {{"bypassVersion", arguments.bypassVersion},
                                        {"each", arguments.listsSteps},
                                        {"changes", changes.Texts()}}};
  return RunShardedBatch(arguments.batch, frame, work, console);
}

}  // namespace

VerbEnd SettleVerb(int argumentCount, char* const arguments[]) {
  SettleArguments parsed;
  const auto line = CommandLineOf(parsed);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto error = Check(parsed);
  if (!error.empty()) return RefuseUsage(error);
  const auto changes = ParseChanges(parsed.whatIf);
  if (!changes) return RefuseUsage(changes.Error().message);
  if (!IsPayload(parsed.payload)) return LabStatus::UnreadableInput;
  parsed.output.changes = changes->Texts();
  parsed.output.isShard = parsed.batch.limits.shard.has_value();
  return PrintSettled(parsed.output, [&](const AddSettled& add, Console& console) {
    return AddRows(parsed, *changes, add, console);
  });
}

}  // namespace fernwick::lab
