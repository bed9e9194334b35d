#pragma once

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// Holds a recording to what one is: names where there must be some, planes that hang together,
/// classes that derive from something other than themselves.
void HoldWellFormed(const Recording& recording);

/// Holds every operation of the recorded registry to what can plainly be read in the recording. Of
/// a large one, the first few entries of each plane are looked at.
void HoldOperations(const Recording& recording);

}  // namespace fernwick::fuzz
