#include "lab/survey/diff/diff_computer.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "lab/support/tool_run.h"
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
    row.changes = {{"ends abnormally", {}, {}, AbnormalEndName}};
  } else if (before.result.fault) {
    row.changes = {{"no longer ends abnormally", {}, AbnormalEndName, {}}};
  } else {
    row.changes = FindChanges(before, after);
  }
}

// What was refused has a row, unless it is refused for lack of memory or descriptors.
Result<ComparedComputer, LabError> Refused(const std::string& path, const LabError& error) {
  if (error.status == LabStatus::OutOfMemory) {
    return LabError{{path + ": " + error.error.message}, error.status};
  }
  return ComparedComputer{{.file = path, .refusal = Describe(error.error)}, error.status};
}

// Both payloads say the same of the computer, for a reason that is no decision.
void NoteFaults(const ToolRun& before, const ToolRun& after, DiffRow& row) {
  const auto faultBefore = ConfigurationFault(before);
  const auto faultAfter = ConfigurationFault(after);
  if (!faultBefore || !faultAfter) return;
  row.notes.push_back({.kind = "malformed configuration in both",
                       .before = Describe(*faultBefore),
                       .after = Describe(*faultAfter)});
}

}  // namespace

Result<ComparedComputer, LabError> DiffComputer(Selected selected, const Payloads& payloads,
                                                PayloadFiles& files) {
  const auto& path = selected.path;
  const auto recording = LoadSelected(selected);
  if (!recording) return Refused(path, recording.Error());
  RecordedRegistry registry(*recording);
  const auto board = ReadBoardIdentity(registry);
  DiffRow row{.file = path, .board = board.boardIdString, .revision = board.boardRevision};
  const auto before = RunTool(*recording, payloads.before, KeptOutput::Counts);
  if (auto failure = ConfigurationFailure(before, payloads.before)) return *std::move(failure);
  const auto after = RunTool(*recording, payloads.after, KeptOutput::Counts);
  if (auto failure = ConfigurationFailure(after, payloads.after)) return *std::move(failure);
  CompareRuns(before, after, row);
  NoteFaults(before, after, row);
  if (!before.result.fault && !after.result.fault) {
    auto changes = FindFileChanges(before, payloads.before, after, payloads.after, files);
    if (!changes) return changes.Error();
    std::ranges::move(*changes, std::back_inserter(row.changes));
  }
  return ComparedComputer{std::move(row)};
}

}  // namespace fernwick::lab
