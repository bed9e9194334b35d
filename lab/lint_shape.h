#pragma once

#include "lab/lint_finding.h"
#include "lab/lint_subject.h"

namespace fernwick::lab {

/// The top of the configuration and the shape of what stands under its types.
void LintShape(const LintSubject& subject, ConfigurationFindings& findings);

/// Keys that occur twice in any dictionary of the configuration.
void LintDuplicateKeys(const ValuePlace& place, ConfigurationFindings& findings);

}  // namespace fernwick::lab
