#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "value/parse_fault.h"

namespace fernwick {

/// Reads the tokens of the old text form, one after the other. A function that returns a
/// boolean returns false on a fault, which Fault() then returns. Offsets are in bytes.
class TextCursor {
 public:
  /// Views the text. REQUIRES: well-formed UTF-8.
  explicit TextCursor(std::string_view text) : text_(text) {}

  std::size_t Offset() const { return at_; }
  bool AtEnd() const { return at_ == text_.size(); }
  bool LookingAt(char c) const { return !AtEnd() && text_[at_] == c; }
  bool LookingAtQuote() const { return LookingAt('"') || LookingAt('\''); }

  /// White space and comments. REQUIRES: the cursor is not inside an unquoted string.
  bool SkipBlanks();

  /// Consumes `c` if it comes next, and returns whether it did.
  bool Consume(char c);

  /// A quoted string. It views the text where it has no escape, and `decoded` otherwise.
  /// REQUIRES: LookingAtQuote().
  bool ReadQuoted(std::string_view& string, std::string& decoded);

  /// The longest run of the characters that need no quotes; empty when none comes next.
  std::string_view ReadUnquoted();

  /// The bytes of "<0f bd>". REQUIRES: LookingAt('<').
  bool ReadData(std::string& bytes);

  /// As ParseFault::Set.
  bool Fail(std::size_t offset, std::string message) {
    return fault_.Set(offset, std::move(message));
  }
  const ParseFault& Fault() const { return fault_; }

 private:
  std::string_view Rest() const { return text_.substr(at_); }
  bool SkipBlockComment();
  bool AppendEscape(std::string& decoded);
  bool AppendOctal(std::string& decoded);
  bool AppendUnicode(std::string& decoded);
  bool ReadUtf16Unit(char32_t& unit);

  std::string_view text_;
  std::size_t at_ = 0;
  ParseFault fault_;
};

}  // namespace fernwick
