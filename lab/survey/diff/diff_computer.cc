#include "lab/survey/diff/diff_computer.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "lab/survey/diff/payload_diff.h"
#include "lab/survey/run.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

// A run that ends abnormally with one of the payloads is a change, with both it is none.
void CompareRuns(const ToolRun& before, const ToolRun& after, DiffRow& row) {
  if (before.result.fault && after.result.fault) {
    row.abnormalEnd = AbnormalEndName;
  } else if (after.result.fault) {
    row.changes = {{ChangeKind::EndsAbnormally, {}, {}, AbnormalEndName}};
  } else if (before.result.fault) {
    row.changes = {{ChangeKind::NoLongerEndsAbnormally, {}, AbnormalEndName, {}}};
  } else {
    row.changes = FindChanges(before, after);
  }
}

Result<ComparedComputer, LabError> Refused(const std::string& path, const LabError& error) {
  ComparedComputer computer{{.file = path, .refusal = Describe(error.error)}, error.status};
  return RefusedUnlessLacking(path, error, std::move(computer));
}

// Both payloads say the same of the computer, for a reason that is no decision.
void NoteFaults(const ToolRun& before, const ToolRun& after, DiffRow& row) {
  const auto errorBefore = MalformedConfiguration(before);
  const auto errorAfter = MalformedConfiguration(after);
  if (!errorBefore || !errorAfter) return;
  row.notes.push_back({.kind = ChangeKind::MalformedInBoth,
                       .before = Describe(*errorBefore),
                       .after = Describe(*errorAfter)});
}

}  // namespace

Result<ComparedComputer, LabError> DiffComputer(Selected selected, const Payloads& payloads,
                                                PayloadFiles& files) {
  const auto recording = LoadSelected(selected);
  if (!recording) return Refused(selected.path, recording.Error());
  const auto before = RunTool(*recording, payloads.before, KeptOutput::Counts);
  const auto after = RunTool(*recording, payloads.after, KeptOutput::Counts);
  auto row = DiffRuns(selected.path, *recording, before, after, payloads, files);
  if (!row) return row.Error();
  return ComparedComputer{*std::move(row)};
}

Result<DiffRow, LabError> DiffRuns(const std::string& path, const Recording& recording,
                                   const ToolRun& before, const ToolRun& after,
                                   const Payloads& payloads, PayloadFiles& files) {
  if (auto failure = UnreadableConfiguration(before, payloads.before)) return *std::move(failure);
  if (auto failure = UnreadableConfiguration(after, payloads.after)) return *std::move(failure);
  RecordedRegistry registry(recording);
  const auto board = ReadBoardIdentity(registry);
  DiffRow row{.file = path, .board = board.boardIdString, .revision = board.boardRevision};
  CompareRuns(before, after, row);
  NoteFaults(before, after, row);
  if (!before.result.fault && !after.result.fault) {
    auto changes = FindFileChanges(before, payloads.before, after, payloads.after, files);
    if (!changes) return changes.Error();
    std::ranges::move(*changes, std::back_inserter(row.changes));
  }
  return row;
}

}  // namespace fernwick::lab
