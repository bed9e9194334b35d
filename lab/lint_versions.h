#pragma once

#include "lab/lint_finding.h"
#include "lab/lint_subject.h"

namespace fernwick::lab {

/// Whether any installed version lies in the personality's window, and whether its maximum is what
/// it seems.
void LintVersions(const PlacedPersonality& personality, ConfigurationFindings& findings);

/// Whether any board revision lies within the personality's bounds.
void LintBoardRevisions(const PlacedPersonality& personality, ConfigurationFindings& findings);

}  // namespace fernwick::lab
