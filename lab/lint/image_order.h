#pragma once

#include <vector>

#include "lab/lint/acceptance.h"
#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Pairs of personalities of one type that accept the same controllers but for the list of one key,
/// where each list has values of its own and both have a common one, and that name different
/// images: the order of the array decides which image a controller with the common value gets.
void LintImageOrder(const LintSubject& subject, const std::vector<LivePersonality>& live,
                    const ValueSets& sets, ConfigurationFindings& findings);

}  // namespace fernwick::lab
