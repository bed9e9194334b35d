#pragma once

#include <string>

#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Why the value of the type matches nothing, whatever is in it, as in "it is a string, not an
/// array of personalities" with the type and the value; empty when it has the shape of the type.
std::string WrongShapeText(const LocatedType& type);

}  // namespace fernwick::lab
