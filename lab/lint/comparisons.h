#pragma once

#include <vector>

#include "lab/lint/acceptance.h"
#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

// What lint looks for in personalities together, those that can match and are not shadowed, in the
// order of the file. Defined in overlap.cc, image_order.cc, gaps.cc and nvram.cc, in this order.

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

/// Pairs of personalities of one type that accept the same controllers but for the list of one key,
/// where each list has values of its own and both have a common one, and that name different
/// images: the order of the array decides which image a controller with the common value gets.
void LintImageOrder(const LintSubject& subject, const std::vector<LivePersonality>& live,
                    const ValueSets& sets, ConfigurationFindings& findings);

/// Gaps between personalities of one type that accept the same controllers, the steps of one
/// upgrade: installed versions, or board revisions, between those that they accept and accepted by
/// none of them.
void LintGaps(const LintSubject& subject, const std::vector<LivePersonality>& live,
              ConfigurationFindings& findings);

/// NVRAM variables that personalities which can match on one computer set to different values, or
/// that they both set and clear.
void LintNvramVariables(const LintSubject& subject, const std::vector<LivePersonality>& live,
                        ConfigurationFindings& findings);

}  // namespace fernwick::lab
