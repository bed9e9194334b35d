#include "lab/report/reported_computer.h"

#include <utility>

#include "lab/survey/run.h"
#include "lab/survey/settle/settle_computer.h"
#include "platform/file_system.h"

namespace fernwick::lab {

Result<ReportedComputer, LabError> ComputerReporter::Report(const Selected& selected) {
  auto row = SurveyComputer(selected, options_, MaxFileSize);
  if (!row) return row.Error();
  ReportedComputer computer{.row = *std::move(row)};
  if (computer.row.outcome == Outcome::Refused) return computer;
  auto settling = SettleComputer(selected, {options_, changes_, configurations_, false});
  if (!settling) return settling.Error();
  computer.settling = *std::move(settling);
  const auto covered = payload_.Cover(selected);
  if (!covered) return covered.Error();
  computer.use = covered->use;
  if (!payloads_) return computer;
  auto compared = DiffComputer(selected, *payloads_, files_);
  if (!compared) return compared.Error();
  computer.difference = std::move(compared->row);
  return computer;
}

}  // namespace fernwick::lab
