#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "value/number.h"

namespace fernwick {

/// Reads the whole of `text` as an integer: an optional sign, then decimal digits, or "0x" and
/// hexadecimal ones. Empty when it is anything else or outside −2^63 to 2^64−1.
std::optional<Integer> ParseInteger(std::string_view text);

/// Reads the whole of `text` as a real: an optional sign, then a decimal number, "nan", "inf" or
/// "infinity", letters in either case. Empty when it is anything else, or a number too large or
/// too small for a double.
std::optional<double> ParseReal(std::string_view text);

/// Base 10.
std::string FormatInteger(Integer integer);

/// The shortest text that reads back to the same double: "3", "1e+05", "-inf".
std::string FormatReal(double real);

}  // namespace fernwick
