#pragma once

#include "lab/lint/finding.h"
#include "lab/lint/images.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Looks for everything that can be wrong with a configuration that could be read.
void LintConfiguration(const LintSubject& subject, const BoardFiles& files,
                       ConfigurationFindings& findings);

}  // namespace fernwick::lab
