#pragma once

#include <vector>

#include "lab/lint/finding.h"
#include "lab/lint/images.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Everything that is wrong with a configuration that could be read, by location.
std::vector<ConfigurationFindings::Row> LintConfiguration(const LintSubject& subject,
                                                          const BoardFiles& files);

}  // namespace fernwick::lab
