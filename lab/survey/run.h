#pragma once

#include <cstddef>
#include <string>

#include "driver/options.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/row.h"
#include "lab/survey/selection.h"
#include "value/result.h"

namespace fernwick::lab {

/// How a process of the tool ends after a fault, as the lab names it.
inline constexpr char AbnormalEndName[] = "SIGABRT";

/// Runs the tool over the computer. What the selection refused has a row too. A lack of memory or
/// descriptors, or of permission in the payload, says nothing about the computer: that is an error,
/// whose message begins with the path. A recording of more than `maxSize` bytes is refused. May be
/// called on any thread.
Result<SurveyRow, LabError> SurveyComputer(Selected selected, const Options& options,
                                           std::size_t maxSize);

/// The same of a recording that was loaded, and of the tool's run over it with these options.
Result<SurveyRow, LabError> SurveyRun(const std::string& path, const Recording& recording,
                                      const ToolRun& run, const Options& options);

/// The row of a recording that could not be loaded; fails as SurveyComputer.
Result<SurveyRow, LabError> RefusedRow(const std::string& path, const LabError& error);

}  // namespace fernwick::lab
