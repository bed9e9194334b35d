#include "value/text/cursor.h"

#include <algorithm>
#include <iterator>

#include "value/unicode/ascii.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

bool NeedsNoQuotes(char c) {
  const char lower = ToLowerAscii(c);
  return (lower >= 'a' && lower <= 'z') || IsDecimalDigit(c) ||
         std::string_view("_$/:.-").find(c) != std::string_view::npos;
}

bool IsOctalDigit(char c) {
  return c >= '0' && c <= '7';
}

// The character of a one-letter escape; the character itself for an unknown one.
char SimpleEscape(char letter) {
  switch (letter) {
    case 'a': return '\a';
    case 'b': return '\b';
    case 'f': return '\f';
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    case 'v': return '\v';
    default: return letter;
  }
}

}  // namespace

bool TextCursor::SkipBlanks() {
  for (;;) {
    at_ = text_.size() - SkipAsciiWhiteSpace(Rest()).size();
    if (Rest().starts_with("//")) {
      at_ = std::min(text_.find_first_of("\n\r", at_), text_.size());
    } else if (Rest().starts_with("/*")) {
      if (!SkipBlockComment()) return false;
    } else {
      return true;
    }
  }
}

bool TextCursor::SkipBlockComment() {
  const std::size_t end = text_.find("*/", at_ + 2);
  if (end == std::string_view::npos) return Fail(at_, "a comment does not end");
  at_ = end + 2;
  return true;
}

bool TextCursor::Consume(char c) {
  if (!LookingAt(c)) return false;
  ++at_;
  return true;
}

bool TextCursor::ReadQuoted(std::string_view& string, std::string& decoded) {
  const std::size_t start = at_++;
  const char ends[] = {text_[start], '\\'};
  bool viewsText = true;
  decoded.clear();
  for (;;) {
    const std::size_t end = text_.find_first_of(std::string_view(ends, std::size(ends)), at_);
    if (end == std::string_view::npos) return Fail(start, "a quoted string does not end");
    const auto chunk = text_.substr(at_, end - at_);
    at_ = end + 1;
    if (text_[end] == ends[0] && viewsText) {
      string = chunk;
      break;
    }
    decoded += chunk;
    if (text_[end] == ends[0]) {
      string = decoded;
      break;
    }
    viewsText = false;
    if (!AppendEscape(decoded)) return false;
  }
  if (FindInvalidText(string) == npos) return true;
  return Fail(start, "a string contains a character that XML cannot carry");
}

// REQUIRES: a backslash has just been consumed.
bool TextCursor::AppendEscape(std::string& decoded) {
  if (AtEnd()) return Fail(at_ - 1, "an escape does not end");
  if (IsOctalDigit(text_[at_])) return AppendOctal(decoded);
  if (text_[at_] == 'U') return AppendUnicode(decoded);
  decoded.push_back(SimpleEscape(text_[at_++]));
  return true;
}

// One to three digits: the character of that code, not the byte.
bool TextCursor::AppendOctal(std::string& decoded) {
  const std::size_t start = at_ - 1;
  char32_t code = 0;
  for (int digits = 0; digits < 3 && !AtEnd() && IsOctalDigit(text_[at_]); ++digits) {
    code = code * 8 + static_cast<char32_t>(text_[at_++] - '0');
  }
  if (code > 0377) return Fail(start, "an octal escape is greater than \\377");
  AppendUtf8(decoded, code);
  return true;
}

// "U" and four hexadecimal digits, or two such escapes that form a surrogate pair.
bool TextCursor::AppendUnicode(std::string& decoded) {
  const std::size_t start = at_ - 1;
  char32_t character = 0;
  if (!ReadUtf16Unit(character)) return false;
  if (IsHighSurrogate(character) && Rest().starts_with("\\U")) {
    ++at_;
    char32_t low = 0;
    if (!ReadUtf16Unit(low)) return false;
    if (!IsLowSurrogate(low)) return Fail(start, "a \\U escape is half of a surrogate pair");
    character = CombineSurrogates(character, low);
  }
  if (IsHighSurrogate(character) || IsLowSurrogate(character)) {
    return Fail(start, "a \\U escape is half of a surrogate pair");
  }
  AppendUtf8(decoded, character);
  return true;
}

// REQUIRES: "U" comes next.
bool TextCursor::ReadUtf16Unit(char32_t& unit) {
  const std::size_t start = at_ - 1;
  ++at_;
  unit = 0;
  for (int digits = 0; digits < 4; ++digits, ++at_) {
    const int value = AtEnd() ? -1 : HexDigitValue(text_[at_]);
    if (value < 0) return Fail(start, "a \\U escape needs four hexadecimal digits");
    unit = unit * 16 + static_cast<char32_t>(value);
  }
  return true;
}

std::string_view TextCursor::ReadUnquoted() {
  const auto* const end = std::ranges::find_if_not(Rest(), NeedsNoQuotes);
  const auto string = Rest().substr(0, static_cast<std::size_t>(end - Rest().begin()));
  at_ += string.size();
  return string;
}

bool TextCursor::ReadData(std::string& bytes) {
  const std::size_t start = at_++;
  int high = -1;  // the first digit of a byte whose second has not come yet
  for (; !AtEnd() && text_[at_] != '>'; ++at_) {
    if (IsAsciiWhiteSpace(text_[at_])) continue;
    const int digit = HexDigitValue(text_[at_]);
    if (digit < 0) return Fail(at_, "data contains something other than hexadecimal digits");
    if (high >= 0) bytes.push_back(static_cast<char>(high << 4 | digit));
    high = high >= 0 ? -1 : digit;
  }
  if (!Consume('>')) return Fail(start, "data does not end");
  if (high >= 0) return Fail(start, "data has an odd number of digits");
  return true;
}

}  // namespace fernwick
