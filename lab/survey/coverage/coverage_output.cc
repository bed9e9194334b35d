#include "lab/survey/coverage/coverage_output.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/coverage/coverage_format.h"
#include "lab/survey/coverage/payload_boards.h"
#include "lab/survey/selected.h"

namespace fernwick::lab {
namespace {

AddCovered AddTo(CoverageTotals& totals, FirstRefusal& refusal) {
  return [&](const CoveredRecording& recording, bool isNamed) {
    ++totals.recordings[static_cast<std::size_t>(recording.use)];
    if (recording.use != RecordingUse::Refused) return;
    PrintError(recording.refusal.error.message);
    refusal.Add(isNamed, recording.refusal.status);
  };
}

// Returns as CoveredPayload::Print.
int PrintBoards(const CoveredPayload& payload, const CoverageOutput& output, CoverageTotals& totals,
                Console& console) {
  const auto format =
      output.format == "json" ? MakeCoverageJson(console) : MakeCoverageText(console);
  return payload.Print(*format, totals);
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
  const auto boards = BoardsOf(*options.personalitiesDirectory);
  if (!boards) return PrintError(boards.Error());
  CoveredPayload payload(options, *boards);
  ProcessConsole console;
  CoverageTotals totals;
  FirstRefusal refusal;
  const int failure = addAll(AddTo(totals, refusal), payload, console);
  if (failure != LabStatus::Done) return failure;
  const int status =
      output.isShard ? LabStatus::Done : PrintBoards(payload, output, totals, console);
  if (status == LabStatus::OutOfResources) return status;
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (refusal.Status() != LabStatus::Done) return refusal.Status();
  if (status != LabStatus::Done) return status;
  const bool isMet = totals.counts.PerMille() >= output.threshold.value_or(0);
  return isMet ? LabStatus::Done : LabStatus::Negative;
}

}  // namespace fernwick::lab
