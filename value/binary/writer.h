#pragma once

#include <string>

#include "value/property_value.h"

namespace fernwick {

/// The value as a binary property list: its objects in the order in which they are reached, equal
/// strings shared; integers, object numbers and offsets as short as may be, text in ASCII where
/// that is enough, reals in eight bytes. REQUIRES: every text is well-formed UTF-8.
std::string WriteBinaryPropertyList(const PropertyValue& value);

}  // namespace fernwick
