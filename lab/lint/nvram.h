#pragma once

#include <vector>

#include "lab/lint/finding.h"
#include "lab/lint/overlap.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// NVRAM variables that personalities which can match on one computer set to different values, or
/// that they both set and clear.
void LintNvramVariables(const LintSubject& subject, const std::vector<LivePersonality>& live,
                        ConfigurationFindings& findings);

}  // namespace fernwick::lab
