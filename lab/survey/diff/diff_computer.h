#pragma once

#include <string>

#include "driver/options.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/diff/diff_row.h"
#include "lab/survey/diff/file_changes.h"
#include "lab/survey/selected.h"
#include "value/result.h"

namespace fernwick::lab {

/// The options of the runs with both payloads.
struct Payloads {
  Options before;
  Options after;
};

/// A computer between two payloads.
struct ComparedComputer {
  DiffRow row;
  int refusal = LabStatus::Done;  // the status for its refusal
};

/// Runs the tool over the computer with both payloads and compares the runs. What the selection
/// refused has a row too. A lack of memory, descriptors or permission is an error, as in
/// SurveyComputer. May be called on any thread.
Result<ComparedComputer, LabError> DiffComputer(Selected selected, const Payloads& payloads,
                                                PayloadFiles& files);

/// The same of a recording that was loaded, and of the tool's runs over it.
Result<DiffRow, LabError> DiffRuns(const std::string& path, const Recording& recording,
                                   const ToolRun& before, const ToolRun& after,
                                   const Payloads& payloads, PayloadFiles& files);

}  // namespace fernwick::lab
