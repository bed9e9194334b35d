#pragma once

#include <string>
#include <vector>

#include "lab/survey/row.h"

namespace fernwick::lab {

// A row in words for people, every text safe to show.

/// A value as in a cell of a table: a string without quotes, "-" for null.
std::string CellText(const Json& value);

/// The status of the run, or what a run without one has: "0", "0 bypassed", "65 refused",
/// "SIGABRT".
std::string StatusText(const SurveyRow& row);

/// "2 x ** No current firmware version?"
std::string DiagnosticText(const DiagnosticCount& diagnostic);

/// "image missing: ridge-24.00.bin"
std::string MissingImageText(const SurveyMatch& match);

/// "Version 5 is not newer than the installed 7 (USBC, personality 2 on IOService:/hpm0)"
std::string MissText(const NearestMiss& miss);

/// Everything but the file, a line each without its line feed: the outcome, the class, every match,
/// the nearest miss, every diagnostic, the plan.
std::vector<std::string> DescribeLines(const SurveyRow& row);

}  // namespace fernwick::lab
