#pragma once

#include <vector>

#include "lab/lint/acceptance.h"
#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Whether there may be a controller that both accept: they agree in the keys that both test, and
/// in the windows of the installed version and the board revision.
bool Overlap(const Acceptance& a, const Acceptance& b);

/// Whether both can match on one computer, on whichever of its controllers: not those for different
/// board revisions or device models. Personalities of one type that accept the same controllers are
/// steps of one upgrade, of which a computer needs one at a time.
bool CanMatchTogether(const LivePersonality& a, const LivePersonality& b);

/// Pairs of personalities of two types of which both plan an image for one controller: the two
/// types for Thunderbolt controllers, and the two for ports.
void LintOverlaps(const LintSubject& subject, const std::vector<LivePersonality>& live,
                  ConfigurationFindings& findings);

}  // namespace fernwick::lab
