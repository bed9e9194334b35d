#include "lab/survey/coverage/coverage_output.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/coverage/coverage_format.h"
#include "lab/survey/coverage/payload_boards.h"

namespace fernwick::lab {
namespace {

// The boards of the payload. Returns the status after a line on standard error.
Result<std::vector<std::string>, int> BoardsOrStatus(const Options& options) {
  auto boards = BoardsOf(*options.personalitiesDirectory);
  if (boards) return *std::move(boards);
  PrintError(boards.Error().error.message);
  return int{boards.Error().status};
}

AddCovered AddTo(CoverageTotals& totals, int& refusal) {
  return [&](const CoveredRecording& recording, bool isNamed) {
    ++totals.recordings[static_cast<std::size_t>(recording.use)];
    if (recording.use != RecordingUse::Refused) return;
    PrintError(recording.refusal.error.message);
    if (isNamed && refusal == LabStatus::Done) refusal = recording.refusal.status;
  };
}

}  // namespace

std::optional<Options> CoverageToolOptions(const std::string& payload, bool bypassVersion) {
  auto options = ToolOptions(payload, bypassVersion);
  if (options.personalitiesDirectory) return options;
  PrintError(payload + ": the tool accepts no payload whose path is not UTF-8");
  return std::nullopt;
}

int PrintCoverage(const Options& options, const CoverageOutput& output,
                  const AddAllCovered& addAll) {
  const auto boards = BoardsOrStatus(options);
  if (!boards) return boards.Error();
  CoveredPayload payload(options, *boards);
  ProcessConsole console;
  CoverageTotals totals;
  int refusal = LabStatus::Done;
  const int failure = addAll(AddTo(totals, refusal), payload, console);
  if (failure != LabStatus::Done) return failure;
  const auto format =
      output.format == "json" ? MakeCoverageJson(console) : MakeCoverageText(console);
  const int status = payload.Print(*format, totals);
  if (status == LabStatus::OutOfMemory) return status;
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (refusal != LabStatus::Done) return refusal;
  if (status != LabStatus::Done) return status;
  return totals.counts.PerMille() < output.threshold.value_or(0) ? 1 : LabStatus::Done;
}

int PrintCoverageShard(const Options& options, const AddAllCovered& addAll,
                       const std::function<void(Json totals, Console& console)>& printEnd) {
  const auto boards = BoardsOrStatus(options);
  if (!boards) return boards.Error();
  CoveredPayload payload(options, *boards);
  ProcessConsole console;
  CoverageTotals totals;
  int refusal = LabStatus::Done;
  const int failure = addAll(AddTo(totals, refusal), payload, console);
  if (failure != LabStatus::Done) return failure;
  printEnd(payload.Counts(), console);
  const int lost = FinishOutput(console);
  return lost != LabStatus::Done ? lost : refusal;
}

}  // namespace fernwick::lab
