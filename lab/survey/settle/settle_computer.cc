#include "lab/survey/settle/settle_computer.h"

#include <utility>

#include "lab/explain/print.h"
#include "lab/recordings/entry_path.h"
#include "lab/support/words.h"
#include "lab/survey/run.h"
#include "lab/survey/settle/causes.h"
#include "lab/survey/settle/stuck.h"
#include "lab/what_if/changed_computer.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

std::string_view NameOfType(TypeSet type) {
  return *NamesOf(type).begin();
}

SettleOutcome OutcomeOf(SettleEnd end) {
  switch (end) {
    case SettleEnd::NothingMatches: return SettleOutcome::Settled;
    case SettleEnd::StateComesBack: return SettleOutcome::NeverSettles;
    case SettleEnd::GivenUp: return SettleOutcome::Undecided;
    case SettleEnd::Bypassed: return SettleOutcome::Bypassed;
    case SettleEnd::AbnormalEnd: return SettleOutcome::AbnormalEnd;
    default: return SettleOutcome::NoPlan;
  }
}

// Turns what happened to a computer into its row.
class RowWriter {
 public:
  RowWriter(const Recording& recording, const Settling& settling, SettleRow& row)
      : recording_(recording), settling_(settling), row_(row) {}

  void Write(bool listsSteps) {
    row_.outcome = OutcomeOf(settling_.end);
    row_.runs = settling_.steps.size();
    row_.endedBy = settling_.endedBy;
    row_.uncheckedBy = settling_.uncheckedBy;
    WriteEnd();
    for (const auto& [entry, isPort, before, after] : settling_.controllers) {
      row_.controllers.push_back({EntryPath(recording_, entry), isPort, ValueOrNull(before),
                                  ValueOrNull(after), IsOlder(after, before)});
    }
    if (settling_.end == SettleEnd::StateComesBack) WriteRepetitions();
    if (listsSteps) WriteSteps();
  }

  void WriteStuck(const std::vector<StuckController>& stuck) {
    row_.outcome = SettleOutcome::Stuck;
    for (const auto& each : stuck) {
      row_.stuck.push_back({EntryPath(recording_, each.controller), std::string(each.type),
                            each.personality + 1, ToJson(each.offered), ValueOrNull(each.installed),
                            RequirementsOf(each)});
    }
  }

 private:
  void WriteEnd() {
    const auto& result = settling_.last.result;
    if (result.fault) {
      row_.reason = AbnormalEndName;
    } else {
      row_.status = result.status;
    }
    if (settling_.end == SettleEnd::NoPlan) row_.reason = NoPlanReason();
  }

  std::string NoPlanReason() const {
    const auto& result = settling_.last.result;
    if (const auto error = MalformedConfiguration(settling_.last)) return Describe(*error);
    if (!result.configuration) return "there is no configuration for the board";
    if (result.matches.empty()) return "the top of the configuration is not a dictionary";
    return "a match names no image";
  }

  MatchInRow Named(const AppliedMatch& match) const {
    return {std::string(NameOfType(match.type)),
            match.personality + 1,
            EntryPath(recording_, match.controller),
            EntryPath(recording_, match.changed),
            ValueOrNull(match.offered),
            ValueOrNull(match.before),
            ValueOrNull(match.after),
            IsOlder(match.after, match.before)};
  }

  void WriteRepetitions() {
    row_.comesBack = settling_.stepsBeforeCycle;
    for (const auto& repetition : FindRepetitions(settling_)) {
      RepetitionInRow named = {repetition.cause, Named(*repetition.match)};
      if (repetition.other != nullptr) named.other = Named(*repetition.other);
      row_.repetitions.push_back(std::move(named));
    }
  }

  void WriteSteps() {
    auto& steps = row_.steps.emplace();
    for (const auto& step : settling_.steps) {
      StepInRow named = {{}, step.nvram, step.otherNvram};
      for (const auto& match : step.matches) named.matches.push_back(Named(match));
      steps.push_back(std::move(named));
    }
  }

  static std::vector<RequirementInRow> RequirementsOf(const StuckController& stuck) {
    std::vector<RequirementInRow> named;
    for (const auto& [failed, origin] : stuck.requirements) {
      named.push_back({.key = std::string(failed.requirement->key),
                       .reason = std::string(NameOf(failed.reason)),
                       .text = FailureText(failed, origin),
                       .origin = origin,
                       .wanted = ValueOrNull(failed.wanted),
                       .found = ValueOrNull(failed.found)});
    }
    return named;
  }

  const Recording& recording_;
  const Settling& settling_;
  SettleRow& row_;
};

Result<SettleRow, LabError> Refused(const std::string& path, const LabError& error) {
  SettleRow row{.file = path,
                .outcome = SettleOutcome::Refused,
                .status = error.status,
                .reason = Describe(error.error)};
  return RefusedUnlessLacking(path, error, std::move(row));
}

// The file with the locations is read for those that are stuck alone. Returns why it cannot be.
std::optional<LabError> FindStuck(const Settling& settling, const Recording& recording,
                                  const SettleWork& work, RowWriter& writer) {
  auto stuck = FindStuckControllers(settling.last, recording);
  if (stuck.empty()) return std::nullopt;
  const auto& board = *settling.last.result.identity->boardIdString;
  const auto located = work.configurations.Located(board, *work.options.personalitiesDirectory);
  if (!located) return located.Error();
  for (auto& each : stuck) Locate(each, board, work.changes, *located);
  writer.WriteStuck(stuck);
  return std::nullopt;
}

}  // namespace

Result<SettleRow, LabError> SettleComputer(Selected selected, const SettleWork& work) {
  auto recording = LoadSelected(selected);
  if (!recording) return Refused(selected.path, recording.Error());
  return SettleRecording(selected.path, *std::move(recording), work);
}

Result<SettleRow, LabError> SettleRecording(const std::string& path, Recording recording,
                                            const SettleWork& work) {
  ChangedComputer computer(std::move(recording));
  if (const auto error = ApplyChanges(work.changes, computer)) {
    return Refused(path, {*error, LabStatus::UnreadableInput});
  }
  RecordedRegistry registry(computer.Recorded());
  const auto board = ReadBoardIdentity(registry);
  std::vector<bool> applied;
  const auto load = work.configurations.Loader(applied);
  const auto settling = Settle(computer, {work.options, load, work.listsSteps});
  if (settling.end == SettleEnd::Failure) {
    return *UnreadableConfiguration(settling.last, work.options);
  }
  SettleRow row{.file = path,
                .board = board.boardIdString,
                .revision = board.boardRevision,
                .changes = work.changes.TextsOf(applied)};
  RowWriter writer(computer.Recorded(), settling, row);
  writer.Write(work.listsSteps);
  if (settling.end != SettleEnd::NothingMatches) return row;
  if (auto failure = FindStuck(settling, computer.Recorded(), work, writer)) {
    return *std::move(failure);
  }
  return row;
}

}  // namespace fernwick::lab
