#include "lab/survey/coverage/covered_payload.h"

#include <utility>

#include "lab/survey/coverage/coverage_counts.h"
#include "lab/survey/coverage/payload_boards.h"
#include "lab/survey/selected.h"
#include "personality/configuration.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

Result<CoveredRecording, LabError> RefusedRecording(const std::string& path,
                                                    const LabError& error) {
  LabError refusal = {{path + ": " + Describe(error.error)}, error.status};
  return RefusedUnlessLacking(path, error,
                              CoveredRecording{RecordingUse::Refused, std::move(refusal)});
}

// A board that has no configuration, or one that cannot be used, with the status for that.
struct LoadedBoard {
  std::optional<ConfigurationFile> file = {};
  std::string problem = {};
  int status = LabStatus::Done;
};

LoadedBoard LoadBoard(const std::string& path) {
  if (IsAbsence(PathError(path))) return {.problem = "there is no Config.plist"};
  auto file = LoadConfiguration(path);
  if (!file) {
    PrintError(path, file.Error());
    return {.problem = "Config.plist: " + Describe(file.Error().error),
            .status = file.Error().status};
  }
  if (!file->Value().AsDictionary()) return {.problem = "its configuration is not a dictionary"};
  return {.file = *std::move(file)};
}

}  // namespace

CoveredPayload::CoveredPayload(const Options& options, const std::vector<std::string>& boards)
    : options_(options) {
  for (const auto& board : boards) boards_.emplace(board, std::nullopt);
}

bool CoveredPayload::Add(const std::string& board, BoardCoverage coverage) {
  const std::lock_guard lock(mutex_);
  auto& known = boards_[board];
  if (known) return known->Add(coverage);
  known = std::move(coverage);
  return true;
}

LabError CoveredPayload::Replaced(const std::string& board) const {
  const auto path = *ConfigurationPath(board, options_.personalitiesDirectory);
  return {{path + ": it was replaced by another meanwhile"}, LabStatus::UnreadableInput};
}

Result<RecordingUse, LabError> CoveredPayload::UseOf(const ToolRun& run) {
  const auto& result = run.result;
  if (result.fault) return RecordingUse::AbnormalEnd;
  if (result.bypassesUpdates) return RecordingUse::Bypassed;
  if (!result.configuration || !result.configuration->value.AsDictionary()) {
    return HasBoardDirectory(run, options_) ? RecordingUse::NoConfiguration
                                            : RecordingUse::UnknownBoard;
  }
  const auto board = BoardNamed(*result.identity->boardIdString, *options_.personalitiesDirectory);
  if (!Add(board, CoverageOf(run))) return Replaced(board);
  return RecordingUse::Counted;
}

Result<CoveredRecording, LabError> CoveredPayload::Cover(Selected selected) {
  const auto recording = LoadSelected(selected);
  if (!recording) return RefusedRecording(selected.path, recording.Error());
  const auto run = RunTool(*recording, options_, KeptOutput::Counts);
  const auto use = Count(run);
  if (!use) return use.Error();
  return CoveredRecording{*use};
}

Result<RecordingUse, LabError> CoveredPayload::Count(const ToolRun& run) {
  if (auto failure = UnreadableConfiguration(run, options_)) return *std::move(failure);
  return UseOf(run);
}

Json CoveredPayload::Counts() const {
  auto counts = Json::object();
  for (const auto& [name, counted] : boards_) {
    if (counted) counts[name] = CountsToJson(*counted);
  }
  return counts;
}

bool CoveredPayload::AddCounts(const Json& counts) {
  if (!counts.is_object()) return false;
  for (const auto& [name, json] : counts.items()) {
    const auto loaded = LoadBoard(*ConfigurationPath(name, options_.personalitiesDirectory));
    if (!loaded.file) return false;
    BoardCoverage coverage(loaded.file->Value());
    if (!AddCountsOf(json, coverage) || !Add(name, std::move(coverage))) return false;
  }
  return true;
}

int CoveredPayload::Print(CoverageFormat& format, CoverageTotals& totals) const {
  int status = LabStatus::Done;
  const auto fail = [&](int error) {
    if (status == LabStatus::Done) status = error;
  };
  for (const auto& [name, counted] : boards_) {
    const auto loaded = LoadBoard(*ConfigurationPath(name, options_.personalitiesDirectory));
    if (loaded.status == LabStatus::OutOfResources) return loaded.status;
    fail(loaded.status);
    CoveredBoard board = {.name = name,
                          .file = loaded.file ? &*loaded.file : nullptr,
                          .problem = loaded.problem,
                          .coverage = BoardCoverage(loaded.file ? loaded.file->Value() : Array())};
    const bool isSame = !counted || (loaded.file && board.coverage.Add(*counted));
    if (!isSame) {
      PrintError(Replaced(name).error.message);
      fail(LabStatus::UnreadableInput);
    }
    ++totals.boards;
    if (board.coverage.runs == 0) ++totals.boardsWithoutRun;
    totals.counts += CountsOf(board.coverage);
    format.AddBoard(board);
  }
  format.Finish(totals);
  return status;
}

}  // namespace fernwick::lab
