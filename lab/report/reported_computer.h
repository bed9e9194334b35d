#pragma once

#include <optional>
#include <string>

#include "driver/options.h"
#include "lab/support/messages.h"
#include "lab/survey/coverage/covered_payload.h"
#include "lab/survey/diff/diff_computer.h"
#include "lab/survey/diff/diff_row.h"
#include "lab/survey/row.h"
#include "lab/survey/selection.h"
#include "lab/survey/settle/settle_row.h"
#include "lab/what_if/changed_configurations.h"
#include "lab/what_if/changes.h"
#include "value/result.h"

namespace fernwick::lab {

/// What the page is about.
struct ReportedPayloads {
  std::string payload;             // as it was named
  std::optional<std::string> old;  // what it is compared with
};

/// All that the page says of one computer. A refused recording has the first row alone.
struct ReportedComputer {
  SurveyRow row;
  std::optional<SettleRow> settling = {};
  std::optional<DiffRow> difference = {};  // from the old payload, if there is one
  RecordingUse use = RecordingUse::Refused;
};

/// Processes computers for a page. May be used on several threads.
class ComputerReporter {
 public:
  /// `payload` counts what is covered. All must outlive this.
  ComputerReporter(const Options& options, const std::optional<Payloads>& payloads,
                   CoveredPayload& payload)
      : options_(options), payloads_(payloads), payload_(payload) {}

  /// Surveys, settles and compares the computer and counts what it covers. Fails as each of them.
  Result<ReportedComputer, LabError> Report(Selected selected);

 private:
  // All but the settling.
  Result<ReportedComputer, LabError> ReportRuns(const std::string& path,
                                                const Recording& recording);

  const Options& options_;
  const std::optional<Payloads>& payloads_;
  CoveredPayload& payload_;
  const Changes changes_ = {};
  ChangedConfigurations configurations_ = ChangedConfigurations(changes_);
  PayloadFiles files_;
};

}  // namespace fernwick::lab
