#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "value/unicode/ascii.h"

namespace fernwick {

/// The fast path for XML as nearly all of it is written: a tag consists of its name, and text
/// has no references. These functions return the plain prefix of a text or its length. They are
/// short enough to be inlined; the caller handles everything else, faults included.

/// How many bytes of white space the text begins with.
inline std::size_t XmlWhiteSpaceLength(std::string_view text) {
  constexpr std::string_view Indentation =
      "\t\t\t\t\t\t\t\t";  // deeply nested lines begin with many tabs
  std::size_t length = 0;
  while (length < text.size() && IsXmlWhiteSpace(text[length])) {
    if (text[length++] != '\n') continue;
    while (text.substr(length).starts_with(Indentation)) length += Indentation.size();
  }
  return length;
}

/// Whether the text begins with the "<" of a start or end tag, and not of a comment or the like.
inline bool BeginsWithXmlTag(std::string_view text) {
  return text.size() > 1 && text[0] == '<' && text[1] != '!' && text[1] != '?';
}

/// The name, of lower-case ASCII letters, in the "<name>" that the text begins with; empty when it
/// begins with something else. REQUIRES: a "<" first.
inline std::string_view PlainXmlStartTagName(std::string_view text) {
  std::size_t end = 1;
  while (end < text.size() && text[end] >= 'a' && text[end] <= 'z') ++end;
  if (end == text.size() || text[end] != '>') return {};
  return text.substr(1, end - 1);
}

/// The length of the "</name>", without white space, that the text begins with; 0 when it begins
/// with something else.
inline std::size_t PlainXmlEndTagLength(std::string_view text, std::string_view name) {
  if (!text.starts_with("</") || !text.substr(2).starts_with(name)) return 0;
  const std::size_t end = 2 + name.size();
  return text.substr(end).starts_with('>') ? end + 1 : 0;
}

/// The prefix of the text that needs no decoding, up to "<" or the end at most.
inline std::string_view PlainXmlCharacters(std::string_view text) {
  static constexpr auto EndsCharacters = [] {
    std::array<bool, 256> table{};
    for (const char c : {'<', '&', '\r', ']'}) table[static_cast<unsigned char>(c)] = true;
    return table;
  }();
  std::size_t length = 0;
  while (length < text.size() && !EndsCharacters[static_cast<unsigned char>(text[length])])
    ++length;
  return text.substr(0, length);
}

}  // namespace fernwick
