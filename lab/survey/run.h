#pragma once

#include "driver/options.h"
#include "lab/survey/row.h"
#include "lab/survey/selection.h"

namespace fernwick::lab {

/// How a process of the tool ends after a fault, as the lab names it.
inline constexpr char AbnormalEndName[] = "SIGABRT";

/// Runs the tool over the computer. What the selection refused has a row too. May be called on any
/// thread.
SurveyRow SurveyComputer(const Selected& selected, const Options& options);

}  // namespace fernwick::lab
