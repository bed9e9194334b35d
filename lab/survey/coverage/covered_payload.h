#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "driver/options.h"
#include "lab/support/json_values.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/coverage/coverage_format.h"
#include "lab/survey/coverage/covered_recording.h"
#include "lab/survey/selection.h"
#include "value/result.h"

namespace fernwick::lab {

/// What recordings exercise of a payload. The counts are sums, which do not depend on the order of
/// the recordings, and memory is linear in the payload.
class CoveredPayload {
 public:
  /// `boards` are those of the payload of `options`, which must outlive this. One that is not among
  /// them is added when a run reads its configuration.
  CoveredPayload(const Options& options, const std::vector<std::string>& boards);

  /// Runs the tool over the computer and counts its pairs. May be called on any thread. Fails where
  /// the computer's run says nothing for lack of permission, memory or descriptors, and where the
  /// configuration of its board was replaced by another since it was last read.
  Result<CoveredRecording, LabError> Cover(Selected selected);

  /// The same of a recording that was loaded: counts the pairs of the tool's run over it.
  Result<RecordingUse, LabError> Count(const ToolRun& run);

  /// The counts of the boards that have any, to be added elsewhere.
  Json Counts() const;

  /// Adds what Counts returned for the same payload. Returns false where it is not of this payload;
  /// then the counts are of no use.
  bool AddCounts(const Json& counts);

  /// Prints every board with the locations in its configuration, of which one at a time is in
  /// memory, and the totals of the boards; `totals` has those of the recordings. Errors of
  /// configurations are printed on standard error. Returns the status of the first of them, which
  /// ends the printing if it is LabStatus::OutOfResources; otherwise LabStatus::Done.
  int Print(CoverageFormat& format, CoverageTotals& totals) const;

 private:
  // `board` as BoardNamed returns it.
  bool Add(const std::string& board, BoardCoverage coverage);
  Result<RecordingUse, LabError> UseOf(const ToolRun& run);
  LabError Replaced(const std::string& board) const;

  const Options& options_;
  std::mutex mutex_;                                            // guards the counts
  std::map<std::string, std::optional<BoardCoverage>> boards_;  // empty: there was no run yet
};

}  // namespace fernwick::lab
