#pragma once

#include "lab/lint_finding.h"
#include "lab/lint_subject.h"

namespace fernwick::lab {

/// The keys of a personality: which it has that are not read, and which it lacks.
void LintKeys(const PlacedPersonality& personality, ConfigurationFindings& findings);

}  // namespace fernwick::lab
