#include "lab/survey/run.h"

#include <string_view>
#include <utility>
#include <vector>

#include "driver/run.h"
#include "lab/recordings/recording_file.h"
#include "lab/support/captured_run.h"
#include "lab/support/messages.h"
#include "lab/survey/matched_pairs.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

std::vector<std::string> ToolArguments(const SurveyedTool& tool) {
  std::vector<std::string> arguments = {"-p", tool.payload};
  if (tool.bypassVersion) arguments.emplace_back("--bypassVersion");
  return arguments;
}

Outcome OutcomeOf(int status, const RunRecorder& run) {
  if (run.bypassesUpdates) return Outcome::Bypassed;
  return status == ExitStatus::PlanPrinted ? Outcome::Plan : Outcome::NoPlan;
}

SurveyMatch Describe(const MatchedPair& pair) {
  const auto of = [](const Dictionary& record, std::string_view key) {
    return ToJson(record.Find(key));
  };
  return {.type = pair.key->key,
          .rid = of(*pair.match, "RID"),
          .portAddress = of(pair.Controller(), "Port Address"),
          .installed = of(pair.Controller(), "Version"),
          .version = of(*pair.match, "Version"),
          .image = of(*pair.match, "Firmware")};
}

SurveyRow Refused(const std::string& path, int status, std::string_view error) {
  const auto prefix = path + ": ";
  if (error.starts_with(prefix)) error.remove_prefix(prefix.size());
  return {
      .file = path, .outcome = Outcome::Refused, .status = status, .reason = std::string(error)};
}

}  // namespace

SurveyRow SurveyRecording(const std::string& path, const SurveyedTool& tool, const Note& note) {
  auto file = LoadRecording(path);
  if (!file.recording) return Refused(path, file.status, file.error);
  RecordedRegistry registry(*std::move(file.recording));
  const auto board = ReadBoardIdentity(registry);
  SurveyRow row{.file = path,
                .outcome = Outcome::AbnormalEnd,
                .board = board.boardIdString,
                .revision = board.boardRevision};
  note(PrintJsonRow(ToJson(row)));
  RunRecorder recorder;
  const auto run = RunCaptured(registry, ToolArguments(tool), &recorder);
  row.outcome = OutcomeOf(run.status, recorder);
  row.status = run.status;
  for (const auto& pair : MatchedPairs(recorder)) row.matches.push_back(Describe(pair));
  row.diagnostics = CountLines(run.standardError);
  return row;
}

SurveyRow RowOf(const WorkResult& result) {
  SurveyRow row;
  if (!result.refusal.empty()) {
    row = Refused(result.path, LabStatus::UnreadableInput, result.refusal);
  } else if (result.answer) {
    row = ParseSurveyRow(*result.answer).value_or(SurveyRow{});
  } else {
    row = ParseSurveyRow(result.note).value_or(SurveyRow{});
    row.outcome = Outcome::AbnormalEnd;
    row.reason = result.end;
  }
  row.file = result.path;  // the bytes themselves, which JSON may not carry
  return row;
}

}  // namespace fernwick::lab
