#pragma once

#include <string>

#include "value/property_value.h"

namespace fernwick {

/// The value as a binary property list: its objects in pre-order (a container before its contents),
/// equal strings shared; integers, object numbers and offsets in the smallest width that fits, text
/// in ASCII where possible, reals in eight bytes. REQUIRES: every text is well-formed
/// UTF-8, and there are fewer than 2^32 values.
std::string WriteBinaryPropertyList(const PropertyValue& value);

}  // namespace fernwick
