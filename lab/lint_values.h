#pragma once

#include "lab/lint_finding.h"
#include "lab/lint_subject.h"

namespace fernwick::lab {

/// Values with which nothing matches under the key where they stand.
void LintValues(const PlacedPersonality& personality, ConfigurationFindings& findings);

}  // namespace fernwick::lab
