#pragma once

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Whether two values are of the same kind and content throughout: as operator== has it, but a real
/// is the same as itself also when it is NaN, and a zero only as one of its own sign.
bool SameValue(const PropertyValue& a, const PropertyValue& b);

/// Whether the value, each part of it counted every time it is reached, is small enough to be
/// written out: a few bytes of shared objects can stand for millions of values.
bool IsSmall(const PropertyValue& value);

}  // namespace fernwick::fuzz
