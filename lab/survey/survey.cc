#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/run.h"
#include "lab/survey/shards/shard_result.h"
#include "lab/survey/shards/sharded_batch.h"
#include "lab/survey/survey_output.h"
#include "lab/survey/survey_report.h"
#include "lab/verbs.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Runs the tool over every recorded computer and prints a row for each: its board, the status, "
    "its class, every match, every diagnostic. A run that ends abnormally and a recording that is "
    "refused are rows like any other.";

std::string Footer() {
  return std::string(SelectionHelp) +
         "\n"
         "The order is that of the selection, whatever the number of jobs. The totals, with the\n"
         "count of each diagnostic over all computers, follow the table, and are on standard\n"
         "error for every other format. ndjson has the whole plan of each computer.\n"
         "\n"
         "CLASS is planned, current (every requirement is met except that the offered version\n"
         "is not newer), blocked (the nearest personality is for the controller, but not for\n"
         "its version or the board's revision, or a match names no image), unmatched,\n"
         "no-controllers, unknown-board, no-configuration, bypassed, fault or refused; abnormal\n"
         "means fault, and no-plan means current, blocked, unmatched, no-controllers,\n"
         "unknown-board and no-configuration. It is the class of the whole computer: a planned\n"
         "one may have controllers without a match. Without a plan there is the pair that is\n"
         "nearest to a match, and the first requirement that it fails.\n"
         "\n"
         "The paths of the rows in the file of --expect are relative to that file; - is\n"
         "standard input. --update writes the file again, whole or not at all, and creates it.\n"
         "\n"
         "Status, after all rows: 65 or 66 when a RECORDING that is named on the command line\n"
         "is refused or cannot be read (with --expect: no such status); 1 when a computer is of\n"
         "a class of --fail-on or, without --update, a row differs from that of --expect;\n"
         "otherwise 0.\n"
         "\n"
         "A shard has the computers whose path hashes to K; its rows are for fernwick-lab\n"
         "merge.\n"
         "\n"
         "Example:\n"
         "  fernwick-lab survey -p payload --expect saved.ndjson --update computers/\n"
         "  fernwick-lab survey -p payload --expect saved.ndjson computers/\n"
         "  fernwick-lab survey -p payload --format ndjson --shard 1/2 computers/ > 1.ndjson\n";
}

struct SurveyOptions {
  std::string payload;
  bool bypassVersion = false;
  BatchOptions batch;
  std::size_t maxMebibytes = 64;
  SurveyOutput output;
};

std::vector<Argument> Arguments(SurveyOptions& options) {
  return {
      PayloadArgument(options.payload),
      BypassVersionArgument(options.bypassVersion),
      {.name = "--format",
       .target = &options.output.format,
       .help = "table, ndjson, csv or junit",
       .valueName = "FORMAT",
       .choices = {"table", "ndjson", "csv", "junit"}},
      {.name = "--wide",
       .target = &options.output.isWide,
       .help = "do not limit the columns of the table to 60 characters"},
      {.name = "--max-size",
       .target = BoundedNumber{&options.maxMebibytes, 1, MaxFileSize >> 20},
       .help = "refuse a recording of more than so many MiB (default: 64)",
       .valueName = "MIB"},
      {.name = "--expect",
       .target = &options.output.expectation,
       .help = "print the differences from a survey saved as ndjson",
       .valueName = "FILE"},
      {.name = "--update",
       .target = &options.output.updates,
       .help = "save this survey as the file of --expect"},
      {.name = "--fail-on",
       .target = &options.output.failOnList,
       .help = "status 1 when a computer is of any of these classes",
       .valueName = "CLASS,..."},
  };
}

// What is wrong with the options together; empty when nothing is.
std::string Check(SurveyOptions& options) {
  options.batch.limits.maxSize = options.maxMebibytes << 20;
  auto& output = options.output;
  auto error = CheckSurveyOutput(output);
  if (error.empty()) error = ReadShard(options.batch);
  if (!error.empty()) return error;
  if (options.batch.limits.shard && (output.format != "ndjson" || output.expectation)) {
    return "--shard needs --format ndjson, and no --expect, which is an option of merge";
  }
  const auto& paths = options.batch.paths;
  const bool readsBoth = output.expectation == "-" && std::ranges::find(paths, "-") != paths.end();
  return readsBoth ? "standard input cannot be both the recordings and --expect" : "";
}

std::optional<int> Parse(int argumentCount, char* const arguments[], SurveyOptions& options) {
  CommandLine line = {.verb = "survey",
                      .description = Description,
                      .footer = Footer(),
                      .arguments = Arguments(options)};
  AddBatchOptions(line, options.batch);
  AddShardOption(line, options.batch);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return status;
  const auto error = Check(options);
  if (error.empty()) return std::nullopt;
  PrintError(error + "; see fernwick-lab survey --help");
  return LabStatus::BadUsage;
}

int AddRows(const SurveyOptions& options, SurveyReport& report, Console& console,
            FirstRefusal& refusal) {
  const auto toolOptions = ToolOptions(options.payload, options.bypassVersion);
  const bool isShard = options.batch.limits.shard.has_value();
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    const auto index = selected.index;
    auto surveyed = SurveyComputer(std::move(selected), toolOptions, options.batch.limits.maxSize);
    if (!surveyed) return surveyed.Error();
    auto text =
        isShard ? PrintShardRow(index, isNamed, ToJson(*surveyed)) : report.TextOf(*surveyed);
    const std::function<void()> print = [&, isNamed, row = *std::move(surveyed),
                                         text = std::move(text)] {
      if (row.outcome == Outcome::Refused) refusal.Add(isNamed, row.status.value());
      report.Add(row, text);
    };
    return print;
  };
  const ShardFrame frame = {.verb = "survey",
                            .payload = options.payload,
                            .options = {{"bypassVersion", options.bypassVersion},
                                        {"maxSize", options.batch.limits.maxSize}}};
  return RunShardedBatch(options.batch, frame, work, console);
}

}  // namespace

VerbEnd SurveyVerb(int argumentCount, char* const arguments[]) {
  SurveyOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!IsPayload(options.payload)) return LabStatus::UnreadableInput;
  return PrintSurvey(options.output,
                     [&](SurveyReport& report, Console& console, FirstRefusal& refusal) {
                       return AddRows(options, report, console, refusal);
                     });
}

}  // namespace fernwick::lab
