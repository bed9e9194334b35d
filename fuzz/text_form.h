#pragma once

#include <string>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Whether the old text form can represent the value: strings, data and containers of these alone.
bool FitsTextForm(const PropertyValue& value);

/// The value in the old text form, numbers and dates as quoted text, booleans as YES and NO,
/// everything in a string that is not plain ASCII as an escape. REQUIRES: every text is well-formed
/// UTF-8.
std::string WriteTextForm(const PropertyValue& value);

}  // namespace fernwick::fuzz
