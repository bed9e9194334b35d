#pragma once

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// Checks that a recording is well-formed: names where there must be some, planes that are trees,
/// chains of classes that end.
void CheckWellFormed(const Recording& recording);

/// Checks every operation of the recorded registry against what can plainly be read in the
/// recording. Of a large one, the first few entries of each plane are looked at.
void CheckOperations(const Recording& recording);

}  // namespace fernwick::fuzz
