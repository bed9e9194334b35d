#pragma once

#include <cstddef>
#include <string_view>

namespace fernwick {

/// Blank, tab, line feed and carriage return: all that counts as white space in XML.
constexpr bool IsXmlWhiteSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// The six ASCII characters: those of XML, vertical tab and form feed.
constexpr bool IsAsciiWhiteSpace(char c) {
  return IsXmlWhiteSpace(c) || c == '\v' || c == '\f';
}

/// Whether it is one of 0 to 9.
constexpr bool IsDecimalDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A letter of ASCII in lower case; any other character as it is.
constexpr char ToLowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The value of a hexadecimal digit in either case, or −1.
constexpr int HexDigitValue(char c) {
  if (IsDecimalDigit(c)) return c - '0';
  const char lower = ToLowerAscii(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Whether two texts are equal but for the case of ASCII letters.
constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (ToLowerAscii(a[i]) != ToLowerAscii(b[i])) return false;
  }
  return true;
}

/// `text` without its leading ASCII white space.
constexpr std::string_view SkipAsciiWhiteSpace(std::string_view text) {
  while (!text.empty() && IsAsciiWhiteSpace(text.front())) text.remove_prefix(1);
  return text;
}

}  // namespace fernwick
