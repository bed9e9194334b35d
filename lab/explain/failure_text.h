#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/explain/explanation.h"

namespace fernwick::lab {

/// What is wrong, with both sides, behind the requirement's key: "wants 0 at 27:13, finds 1". Safe
/// to show, on one line.
std::string FailureText(const ExplainedFailure& failure);

/// Where the hardware's side comes from, or why it is missing, a line for each property, without
/// its line feed. REQUIRES: its sources were looked up.
std::vector<std::string> SourceLines(const ExplainedFailure& failure);

/// ""UID" of ridge1 is 17 (0x11): the low 4 bits"; ""Revision" of hpm0 is absent".
std::string SourceText(const ExplainedSource& source);

/// " at 27:13"; nothing when no place is known.
std::string AtPlace(const std::optional<FilePlace>& place);

}  // namespace fernwick::lab
