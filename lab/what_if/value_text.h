#pragma once

#include <optional>
#include <string_view>

#include "value/property_list_reader.h"
#include "value/result.h"

namespace fernwick::lab {

/// A property-list value as a person writes it on a command line: an integer in decimal or with
/// "0x" or "0X" in hexadecimal, a real ("41.05", "1e3"), "true" and "false", a text in double
/// quotes with the escapes of C, data as "<5a65 64>", an array of these as "(1, 2)", any value as
/// an element of XML ("<date>2026-11-22T00:00:00Z</date>"); everything else is the text itself.
/// Returns what is wrong with a text that begins like one of them and is none.
Result<PropertyList> ParseValueText(std::string_view text);

/// Whether a property list can contain it as a string: Unicode text that XML can carry.
std::optional<Error> TextFault(std::string_view text);

}  // namespace fernwick::lab
