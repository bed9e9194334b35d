#pragma once

#include <cstddef>
#include <vector>

#include "lab/lint/acceptance.h"
#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Which personalities of an array are shadowed: by each the index of an earlier one that accepts
/// everything that it accepts, or its own index. Those that accept nothing shadow nothing and are
/// not shadowed.
struct Shadowing {
  std::vector<std::size_t> shadowedBy;
  std::size_t cutShort = 0;  // how many might be shadowed by one that they were not compared with
};

/// The personalities are in the order of their array. REQUIRES: all are of one type.
Shadowing FindShadowed(const std::vector<Acceptance>& personalities);

/// Reports which personalities of a type are shadowed, and adds those that can match and are not to
/// the end of `live`.
void LintShadowing(const LintSubject& subject, const LocatedType& type, ValueSets& sets,
                   std::vector<LivePersonality>& live, ConfigurationFindings& findings);

}  // namespace fernwick::lab
