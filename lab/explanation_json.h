#pragma once

#include "lab/explanation.h"
#include "lab/json_values.h"

namespace fernwick::lab {

/// The whole explanation. Personalities and controllers are numbered from 1; pairs stand in the
/// order of the file.
Json ExplanationJson(const Explanation& explanation);

}  // namespace fernwick::lab
