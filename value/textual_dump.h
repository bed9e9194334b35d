#pragma once

#include <string>

#include "value/property_value.h"

namespace fernwick {

/// An absent value in every output.
inline constexpr char AbsentText[] = "(null)";

/// The readable rendering of a value, four blanks a level, no newline at the end: strings and keys
/// in double quotes, data as "<5a65642d 343200>", arrays in "( , )", dictionaries in "{ = ; }".
std::string DumpText(const PropertyValue& value);

}  // namespace fernwick
