#include "lab/survey/run.h"

#include <string_view>
#include <utility>

#include "lab/recordings/recording_file.h"
#include "lab/support/tool_run.h"
#include "platform/file_system.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

Outcome OutcomeOf(const RunResult& result) {
  if (result.fault) return Outcome::AbnormalEnd;
  if (result.bypassesUpdates) return Outcome::Bypassed;
  return result.status == ExitStatus::PlanPrinted ? Outcome::Plan : Outcome::NoPlan;
}

Result<SurveyMatch, LabError> MatchOf(const MatchedPair& pair, const ToolRun& run,
                                      const Options& options) {
  const auto path = ImagePath(pair, run, options.personalitiesDirectory);
  const int error = path ? PathError(*path) : 0;
  if (error != 0 && !IsAbsence(error)) return PathFailure(*path, error);
  return SurveyMatch{.type = std::string(pair.key->key),
                     .rid = ToJson(pair.match->Find("RID")),
                     .portAddress = ToJson(pair.Controller().Find("Port Address")),
                     .installed = ToJson(pair.Controller().Find("Version")),
                     .version = ToJson(pair.match->Find("Version")),
                     .image = ToJson(pair.match->Find("Firmware")),
                     .isImageMissing = error != 0};
}

// The matches, diagnostics and the plan of a run without a fault. Returns why they are not known.
std::optional<LabError> FillRow(const ToolRun& run, const Options& options, SurveyRow& row) {
  row.status = run.result.status;
  for (const auto& pair : MatchedPairs(run)) {
    auto match = MatchOf(pair, run, options);
    if (!match) return match.Error();
    row.matches.push_back(*std::move(match));
  }
  row.diagnostics = run.diagnostics;
  row.plan = SummaryOfPlan(run);
  return std::nullopt;
}

// What was refused has a row, unless it is refused for lack of memory or descriptors.
Result<SurveyRow, LabError> Refused(const std::string& path, const LabError& error) {
  if (error.status == LabStatus::OutOfMemory) {
    return LabError{{path + ": " + error.error.message}, error.status};
  }
  return SurveyRow{.file = path,
                   .outcome = Outcome::Refused,
                   .status = error.status,
                   .reason = Describe(error.error)};
}

}  // namespace

Result<SurveyRow, LabError> SurveyComputer(const Selected& selected, const Options& options,
                                           std::size_t maxSize) {
  const auto& path = selected.path;
  if (!selected.error.empty()) return Refused(path, ErrorOf(selected));
  const auto recording = LoadRecording(path, nullptr, maxSize);
  if (!recording) return Refused(path, recording.Error());
  RecordedRegistry registry(*recording);
  const auto board = ReadBoardIdentity(registry);
  const auto run = RunTool(*recording, options, KeptOutput::Counts);
  if (auto failure = ConfigurationFailure(run, options)) return *std::move(failure);
  SurveyRow row{.file = path,
                .outcome = OutcomeOf(run.result),
                .board = board.boardIdString,
                .revision = board.boardRevision};
  if (run.result.fault) {
    row.reason = AbnormalEndName;
    return row;
  }
  if (auto failure = FillRow(run, options, row)) return *std::move(failure);
  return row;
}

}  // namespace fernwick::lab
