#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "value/result.h"

namespace fernwick {

/// A position in a text as people count it: from 1, columns in characters.
struct TextPosition {
  std::size_t line;
  std::size_t column;
};

/// The position of the byte at `offset`. A line ends with a line feed, a carriage return, or both
/// in that pair. REQUIRES: `text` is well-formed UTF-8 up to `offset`, which is in it or at its
/// end.
TextPosition PositionAt(std::string_view text, std::size_t offset);

/// The error at that position. REQUIRES: as PositionAt.
Error ErrorAt(std::string_view text, std::size_t offset, std::string message);

/// The start of a text from a file, short enough for a message of one line: at most 40
/// bytes of it, then "..."; white space as blanks, other control characters as octal escapes.
std::string Excerpt(std::string_view text);

}  // namespace fernwick
