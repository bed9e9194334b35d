#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/coverage/coverage_format.h"
#include "lab/survey/coverage/covered_payload.h"
#include "lab/survey/coverage/payload_boards.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints what recorded computers exercise of a payload: for every board, personality and "
    "element of a list how many controllers it was tested against and matched, what rejected the "
    "others first, and what no recording exercises.";

constexpr char CoverageFooter[] =
    "\nOnly pairs that the tool tests count: a controller that matched a personality is not tested "
    "against\nlater ones. An element counts as matched when a match has its value; the lists are "
    "those of the keys\nof which a controller needs one value. A run that is bypassed or ends "
    "abnormally is not counted.\n\n"
    "The percentage is that of the personalities and elements of all boards, also of those without "
    "a\nrecording, that some controller matched. --bypassVersion matches more.\n\n"
    "Status, after everything: 65 or 66 when a RECORDING that is named on the command line, or a\n"
    "configuration, is malformed or cannot be read; 1 when less is matched than --threshold asks "
    "for;\notherwise 0.\n\n"
    "Example:\n  fernwick-lab coverage -p payload computers/\n";

struct CoverageOptions {
  std::string payload;
  BatchOptions batch;
  bool bypassVersion = false;
  std::string format = "text";
  bool asJson = false;
  std::size_t threshold = 0;
};

std::optional<int> Parse(int argumentCount, char* const arguments[], CoverageOptions& options) {
  CommandLine line = {
      .verb = "coverage",
      .description = Description,
      .footer = SelectionHelp + std::string(CoverageFooter),
      .arguments = {
          {.name = "-p,--payload",
           .target = &options.payload,
           .help = "the payload directory",
           .least = 1,
           .valueName = "PAYLOAD"},
          {.name = "--bypassVersion",
           .target = &options.bypassVersion,
           .help = "as the tool's own"},
          {.name = "--threshold",
           .target = BoundedNumber{&options.threshold, 0, 100},
           .help = "status 1 when less than so many percent are matched",
           .valueName = "PERCENT"},
          {.name = "--format",
           .target = &options.format,
           .help = "text or json",
           .valueName = "FORMAT",
           .choices = {"text", "json"}},
          {.name = "--json", .target = &options.asJson, .help = "the same as --format json"},
      }};
  AddBatchOptions(line, options.batch);
  return ParseCommandLine(line, argumentCount, arguments);
}

// Runs the tool over everything that is selected. Returns as RunBatch; `refusal` is the status of
// the first named recording that is refused.
int CoverAll(const CoverageOptions& options, CoveredPayload& payload, CoverageTotals& totals,
             int& refusal, Console& console) {
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    auto covered = payload.Cover(std::move(selected));
    if (!covered) return covered.Error();
    const std::function<void()> print = [&, isNamed, recording = *std::move(covered)] {
      ++totals.recordings[static_cast<std::size_t>(recording.use)];
      if (recording.use != RecordingUse::Refused) return;
      PrintError(recording.refusal.error.message);
      if (isNamed && refusal == LabStatus::Done) refusal = recording.refusal.status;
    };
    return print;
  };
  return RunBatch(options.batch, work, console);
}

int RunCoverage(const CoverageOptions& options) {
  const auto toolOptions = ToolOptions(options.payload, options.bypassVersion);
  if (!toolOptions.personalitiesDirectory) {
    PrintError(options.payload + ": the tool accepts no payload whose path is not UTF-8");
    return LabStatus::UnreadableInput;
  }
  const auto boards = BoardsOf(*toolOptions.personalitiesDirectory);
  if (!boards) {
    PrintError(boards.Error().error.message);
    return boards.Error().status;
  }
  CoveredPayload payload(toolOptions, *boards);
  ProcessConsole console;
  CoverageTotals totals;
  int refusal = LabStatus::Done;
  const int failure = CoverAll(options, payload, totals, refusal, console);
  if (failure != LabStatus::Done) return failure;
  const bool isJson = options.asJson || options.format == "json";
  const auto format = isJson ? MakeCoverageJson(console) : MakeCoverageText(console);
  const int status = payload.Print(*format, totals);
  if (status == LabStatus::OutOfMemory) return status;
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (refusal != LabStatus::Done) return refusal;
  if (status != LabStatus::Done) return status;
  return totals.counts.PerMille() < options.threshold * 10 ? 1 : LabStatus::Done;
}

}  // namespace

VerbEnd CoverageVerb(int argumentCount, char* const arguments[]) {
  CoverageOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!IsPayload(options.payload)) return LabStatus::UnreadableInput;
  return RunCoverage(options);
}

}  // namespace fernwick::lab
