#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace fernwick {

// What the kernel writes into the small text files of /sys and /proc.

/// The text without ASCII white space at its ends.
std::string_view Trimmed(std::string_view text);

/// The text without the line feed at its end, if there is one.
std::string_view WithoutLineEnd(std::string_view text);

/// Whether one of the lines is `line`.
bool HasLine(std::string_view text, std::string_view line);

/// The number that the digits spell: all of the text, and at least one. Absent for anything else,
/// and beyond 64 bits. REQUIRES: a base from 2 to 16.
std::optional<std::uint64_t> ParseDigits(std::string_view text, int base);

/// A number in C notation ("0x1f", "017", "15"), white space at the ends ignored. Absent for
/// anything else, a sign too.
std::optional<std::uint64_t> ParseCNumber(std::string_view text);

}  // namespace fernwick
