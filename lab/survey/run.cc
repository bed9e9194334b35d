#include "lab/survey/run.h"

#include <limits.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "lab/survey/short_text.h"
#include "platform/file_system.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

Outcome OutcomeOf(const RunResult& result) {
  if (result.fault) return Outcome::AbnormalEnd;
  if (result.bypassesUpdates) return Outcome::Bypassed;
  return result.status == ExitStatus::PlanPrinted ? Outcome::Plan : Outcome::NoPlan;
}

// Many controllers may match one personality, so that a row may repeat a text many times.
Json ShortJson(const PropertyValue* value) {
  const auto text = value == nullptr ? std::nullopt : value->AsString();
  return text ? Json(ShortText(*text)) : ToJson(value);
}

// The errno that says why the planned image is not found; 0 when it is, or when none is named.
int ImageError(const MatchedPair& pair, const ToolRun& run, const Options& options) {
  const auto* image = pair.match->Find("Firmware");
  const auto name = image == nullptr ? std::nullopt : image->AsString();
  if (name && name->size() > PATH_MAX) return ENAMETOOLONG;
  const auto path = ImagePath(pair, run, options.personalitiesDirectory);
  return path ? PathError(*path) : 0;
}

Result<SurveyMatch, LabError> MatchOf(const MatchedPair& pair, const ToolRun& run,
                                      const Options& options) {
  const int error = ImageError(pair, run, options);
  if (error != 0 && !IsAbsence(error)) {
    return PathFailure(*ImagePath(pair, run, options.personalitiesDirectory), error);
  }
  return SurveyMatch{.type = std::string(pair.key->key),
                     .rid = ToJson(pair.match->Find("RID")),
                     .portAddress = ToJson(pair.Controller().Find("Port Address")),
                     .installed = ToJson(pair.Controller().Find("Version")),
                     .version = ToJson(pair.match->Find("Version")),
                     .image = ShortJson(pair.match->Find("Firmware")),
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

}  // namespace

Result<SurveyRow, LabError> SurveyComputer(Selected selected, const Options& options,
                                           std::size_t maxSize) {
  const auto recording = LoadSelected(selected, maxSize);
  if (!recording) return RefusedRow(selected.path, recording.Error());
  const auto run = RunTool(*recording, options, KeptOutput::Counts);
  return SurveyRun(selected.path, *recording, run, options);
}

Result<SurveyRow, LabError> SurveyRun(const std::string& path, const Recording& recording,
                                      const ToolRun& run, const Options& options) {
  if (auto failure = UnreadableConfiguration(run, options)) return *std::move(failure);
  RecordedRegistry registry(recording);
  const auto board = ReadBoardIdentity(registry);
  auto [computerClass, miss] = Classify(run, recording, options);
  SurveyRow row{.file = path,
                .outcome = OutcomeOf(run.result),
                .computerClass = computerClass,
                .board = board.boardIdString,
                .revision = board.boardRevision,
                .miss = std::move(miss)};
  if (run.result.fault) {
    row.reason = AbnormalEndName;
    return row;
  }
  if (auto failure = FillRow(run, options, row)) return *std::move(failure);
  return row;
}

Result<SurveyRow, LabError> RefusedRow(const std::string& path, const LabError& error) {
  SurveyRow row{.file = path,
                .outcome = Outcome::Refused,
                .computerClass = ComputerClass::Refused,
                .status = error.status,
                .reason = Describe(error.error)};
  return RefusedUnlessLacking(path, error, std::move(row));
}

}  // namespace fernwick::lab
