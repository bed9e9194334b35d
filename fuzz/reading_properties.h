#pragma once

#include <cstddef>
#include <string_view>

#include "value/property_value.h"
#include "value/result.h"

namespace fernwick::fuzz {

/// What is true of every reading of a property list: an error has a message, and a value can be
/// written as XML, as binary and, where that can represent it, in the old text form, and reads back
/// the same from each.
void CheckReading(const Result<PropertyValue>& reading);

/// Checks that the error, if there is one, is at a line and column of `text`.
void CheckLocationInText(const Result<PropertyValue>& reading, std::string_view text);

/// Checks that the error, if there is one, is at a byte of a file of that size, or at its end.
void CheckLocationInFile(const Result<PropertyValue>& reading, std::size_t fileSize);

}  // namespace fernwick::fuzz
