#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// What holds for every reading of a property list: there is either a value or an error, and a
/// value can be written as XML, as binary and, where that can hold it, in the old text form, and
/// reads back the same from each.
void HoldReading(const std::optional<PropertyValue>& value, const std::string& error);

/// Holds an error (an empty one is none) to begin with a line and column of `text`.
void HoldPlaceInText(std::string_view error, std::string_view text);

/// Holds an error (an empty one is none) to begin with the offset of a byte of a file of that size,
/// or that of its end.
void HoldPlaceInFile(std::string_view error, std::size_t fileSize);

}  // namespace fernwick::fuzz
