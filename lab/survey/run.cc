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

SurveyMatch MatchOf(const MatchedPair& pair, const ToolRun& run, const Options& options) {
  const auto path = ImagePath(pair, run, options.personalitiesDirectory);
  return {.type = std::string(pair.key->key),
          .rid = ToJson(pair.match->Find("RID")),
          .portAddress = ToJson(pair.Controller().Find("Port Address")),
          .installed = ToJson(pair.Controller().Find("Version")),
          .version = ToJson(pair.match->Find("Version")),
          .image = ToJson(pair.match->Find("Firmware")),
          .isImageMissing = path && !PathExists(*path)};
}

SurveyRow Refused(const std::string& path, const LabError& error) {
  return {.file = path,
          .outcome = Outcome::Refused,
          .status = error.status,
          .reason = Describe(error.error)};
}

}  // namespace

SurveyRow SurveyComputer(const Selected& selected, const Options& options) {
  const auto& path = selected.path;
  if (!selected.error.empty()) return Refused(path, {{selected.error}, LabStatus::UnreadableInput});
  const auto recording = LoadRecording(path);
  if (!recording) return Refused(path, recording.Error());
  RecordedRegistry registry(*recording);
  const auto board = ReadBoardIdentity(registry);
  const auto run = RunTool(*recording, options);
  SurveyRow row{.file = path,
                .outcome = OutcomeOf(run.result),
                .board = board.boardIdString,
                .revision = board.boardRevision};
  if (run.result.fault) {
    row.reason = AbnormalEndName;
    return row;
  }
  row.status = run.result.status;
  for (const auto& pair : MatchedPairs(run)) {
    row.matches.push_back(MatchOf(pair, run, options));
  }
  row.diagnostics = CountLines(run.standardError);
  row.plan = SummaryOfPlan(run);
  return row;
}

}  // namespace fernwick::lab
