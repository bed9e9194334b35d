#include "lab/report/reported_computer.h"

#include <utility>

#include "lab/survey/run.h"
#include "lab/survey/settle/settle_computer.h"

namespace fernwick::lab {

Result<ReportedComputer, LabError> ComputerReporter::Report(Selected selected) {
  const auto& path = selected.path;
  auto recording = LoadSelected(selected);
  if (!recording) {
    auto refused = RefusedRow(path, recording.Error());
    if (!refused) return refused.Error();
    return ReportedComputer{.row = *std::move(refused)};
  }
  auto computer = ReportRuns(path, *recording);
  if (!computer) return computer;
  auto settling =
      SettleRecording(path, *std::move(recording), {options_, changes_, configurations_, false});
  if (!settling) return settling.Error();
  computer->settling = *std::move(settling);
  return computer;
}

Result<ReportedComputer, LabError> ComputerReporter::ReportRuns(const std::string& path,
                                                                const Recording& recording) {
  const auto run = RunTool(recording, options_, KeptOutput::Counts);
  auto row = SurveyRun(path, recording, run, options_);
  if (!row) return row.Error();
  ReportedComputer computer{.row = *std::move(row)};
  const auto use = payload_.Count(run);
  if (!use) return use.Error();
  computer.use = *use;
  if (!payloads_) return computer;
  const auto before = RunTool(recording, payloads_->before, KeptOutput::Counts);
  auto difference = DiffRuns(path, recording, before, run, *payloads_, files_);
  if (!difference) return difference.Error();
  computer.difference = *std::move(difference);
  return computer;
}

}  // namespace fernwick::lab
