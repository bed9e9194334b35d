#pragma once

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Whether two values are of the same kind and content throughout: as operator== has it, but a real
/// is the same as itself also when it is NaN, and a zero only as one of its own sign.
bool SameValue(const PropertyValue& a, const PropertyValue& b);

/// Whether the value has at most 2^16 values and bytes of text, keys and data in all, and is
/// therefore quickly written out: a small binary file may share objects that add up to many times
/// its size.
bool IsSmall(const PropertyValue& value);

}  // namespace fernwick::fuzz
