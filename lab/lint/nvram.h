#pragma once

#include <vector>

#include "lab/lint/controller_values.h"
#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// A personality that can match, and on boards of which revisions.
struct LivePersonality {
  const LocatedPersonality* personality;
  RevisionRange revisions;
};

/// NVRAM variables that personalities which can match on one computer set to different values, or
/// that they both set and clear. All that can match at all can match together, on different
/// controllers or for different types, save those for different board revisions.
void LintNvramVariables(const LintSubject& subject, const std::vector<LivePersonality>& live,
                        ConfigurationFindings& findings);

}  // namespace fernwick::lab
