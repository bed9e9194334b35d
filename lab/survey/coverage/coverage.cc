#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/survey/batch.h"
#include "lab/survey/coverage/coverage_format.h"
#include "lab/survey/coverage/coverage_output.h"
#include "lab/survey/coverage/covered_payload.h"
#include "lab/survey/shards/shard_result.h"
#include "lab/survey/shards/sharded_batch.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints what recorded computers exercise of a payload: for every board, personality and "
    "element of a list how many controllers it was tested against and matched, what rejected the "
    "others first, and what no recording exercises.";

constexpr char CoverageFooter[] =
    "\n"
    "Only what the tool tests counts: a controller that matched a personality is not tested\n"
    "against later ones, and a value that equals an element of a list is not compared with\n"
    "later ones. An element is rejected by the key of its list where a controller has another\n"
    "value. The lists are those of the keys of which a controller needs one value. A run that\n"
    "is bypassed or ends abnormally is not counted.\n"
    "\n"
    "The percentage is that of the personalities and elements of all boards, also of those\n"
    "without a recording, that some controller matched. --bypassVersion matches more.\n"
    "\n"
    "Status, after everything: 65 or 66 when a RECORDING that is named on the command line, or\n"
    "a configuration, is malformed or cannot be read; 1 when less is matched than --threshold\n"
    "asks for; otherwise 0.\n"
    "\n"
    "Example:\n"
    "  fernwick-lab coverage -p payload computers/\n";

struct CoverageOptions {
  std::string payload;
  BatchOptions batch;
  bool bypassVersion = false;
  CoverageOutput output;
  bool asJson = false;
};

// What is wrong with the options together; empty when nothing is.
std::string Check(CoverageOptions& options) {
  if (options.asJson) options.output.format = "json";
  auto error = ReadShard(options.batch);
  options.output.isShard = options.batch.limits.shard.has_value();
  if (!error.empty() || !options.output.isShard || !options.output.threshold) return error;
  return "--threshold is an option of merge, not of a shard";
}

std::optional<int> Parse(int argumentCount, char* const arguments[], CoverageOptions& options) {
  CommandLine line = {
      .verb = "coverage",
      .description = Description,
      .footer = SelectionHelp + std::string(CoverageFooter),
      .arguments = {
          PayloadArgument(options.payload),
          BypassVersionArgument(options.bypassVersion),
          {.name = "--threshold",
           .target = Percentage{&options.output.threshold},
           .help = "status 1 when less than so many percent are matched",
           .valueName = "PERCENT"},
          {.name = "--format",
           .target = &options.output.format,
           .help = "text or json",
           .valueName = "FORMAT",
           .choices = {"text", "json"}},
          {.name = "--json", .target = &options.asJson, .help = "the same as --format json"},
      }};
  AddBatchOptions(line, options.batch);
  AddShardOption(line, options.batch);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto error = Check(options);
  if (error.empty()) return std::nullopt;
  PrintError(error + "; see fernwick-lab coverage --help");
  return LabStatus::BadUsage;
}

// Runs the tool over everything that is selected. Returns as RunBatch. The rows of a shard are
// printed.
int CoverAll(const CoverageOptions& options, const AddCovered& add, CoveredPayload& payload,
             Console& console) {
  const bool isShard = options.batch.limits.shard.has_value();
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    const auto index = selected.index;
    auto covered = payload.Cover(std::move(selected));
    if (!covered) return covered.Error();
    const std::function<void()> print = [&, isNamed, index, recording = *std::move(covered)] {
      if (isShard) console.Write(PrintShardRow(index, isNamed, ToJson(recording)));
      add(recording, isNamed);
    };
    return print;
  };
  const ShardFrame frame = {.verb = "coverage",
                            .payload = options.payload,
                            .options = {{"bypassVersion", options.bypassVersion}},
                            .totals = [&] { return payload.Counts(); }};
  return RunShardedBatch(options.batch, frame, work, console);
}

int RunCoverage(const CoverageOptions& options) {
  const auto toolOptions = CoverageToolOptions(options.payload, options.bypassVersion);
  if (!toolOptions) return LabStatus::UnreadableInput;
  const auto addAll = [&](const AddCovered& add, CoveredPayload& payload, Console& console) {
    return CoverAll(options, add, payload, console);
  };
  return PrintCoverage(*toolOptions, options.output, addAll);
}

}  // namespace

VerbEnd CoverageVerb(int argumentCount, char* const arguments[]) {
  CoverageOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!IsPayload(options.payload)) return LabStatus::UnreadableInput;
  return RunCoverage(options);
}

}  // namespace fernwick::lab
