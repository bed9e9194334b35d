#pragma once

#include <vector>

#include "lab/lint/finding.h"
#include "lab/lint/overlap.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Gaps between personalities of one type that accept the same controllers, the steps of one
/// upgrade: installed versions, or board revisions, between those that they accept and accepted by
/// none of them.
void LintGaps(const LintSubject& subject, const std::vector<LivePersonality>& live,
              ConfigurationFindings& findings);

}  // namespace fernwick::lab
