#include "value/unicode/text_position.h"

#include <algorithm>
#include <utility>

#include "value/unicode/ascii.h"
#include "value/unicode/printable.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr std::size_t MaxExcerptSize = 40;  // bytes

// Text without anything that a terminal would act on: white space as blanks, other control
// characters as octal escapes.
std::string OnOneLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const auto [character, decodedLength] = DecodeUtf8(text);
    const std::size_t length = std::max<std::size_t>(decodedLength, 1);
    if (IsAsciiWhiteSpace(text.front())) {
      line += ' ';
    } else if (decodedLength != 0 && IsControlCharacter(character)) {
      AppendOctalEscape(line, character);
    } else {
      line += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return line;
}

}  // namespace

TextPosition PositionAt(std::string_view text, std::size_t offset) {
  TextPosition position{1, 1};
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < offset; ++i) {
    const bool beforeLineFeed = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if ((text[i] != '\n' && text[i] != '\r') || beforeLineFeed) continue;
    ++position.line;
    lineStart = i + 1;
  }
  const auto line = text.substr(lineStart, offset - lineStart);
  position.column += CountCharacters(line);
  return position;
}

Error ErrorAt(std::string_view text, std::size_t offset, std::string message) {
  const auto [line, column] = PositionAt(text, offset);
  return {std::move(message), FileLocation{.line = line, .column = column}};
}

std::string Excerpt(std::string_view text) {
  if (text.size() <= MaxExcerptSize) return OnOneLine(text);
  return OnOneLine(FirstCharacters(text, MaxExcerptSize)) + "...";
}

}  // namespace fernwick
