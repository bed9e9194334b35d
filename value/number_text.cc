#include "value/number_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "value/unicode/ascii.h"

namespace fernwick {
namespace {

// Removes an optional sign from the front of the text and returns whether it was a minus.
bool ConsumeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool minus = text.front() == '-';
  text.remove_prefix(1);
  return minus;
}

bool StartsLikeDecimal(std::string_view text) {
  return !text.empty() && (IsDecimalDigit(text.front()) || text.front() == '.');
}

}  // namespace

std::optional<Integer> ParseInteger(std::string_view text) {
  const bool minus = ConsumeSign(text);
  const bool hexadecimal = text.starts_with("0x");
  if (hexadecimal) text.remove_prefix(2);
  std::uint64_t magnitude = 0;
  const char* end = text.data() + text.size();
  const auto [rest, fault] = std::from_chars(text.data(), end, magnitude, hexadecimal ? 16 : 10);
  if (fault != std::errc() || rest != end) return std::nullopt;
  if (minus) return Integer::Negated(magnitude);
  return Integer(magnitude);
}

std::optional<double> ParseReal(std::string_view text) {
  const bool minus = ConsumeSign(text);
  double magnitude = 0;
  if (EqualsIgnoringCase(text, "nan")) {
    magnitude = std::numeric_limits<double>::quiet_NaN();
  } else if (EqualsIgnoringCase(text, "inf") || EqualsIgnoringCase(text, "infinity")) {
    magnitude = std::numeric_limits<double>::infinity();
  } else {
    const char* end = text.data() + text.size();
    if (!StartsLikeDecimal(text)) return std::nullopt;
    const auto [rest, fault] = std::from_chars(text.data(), end, magnitude);
    if (fault != std::errc() || rest != end) return std::nullopt;
  }
  return minus ? -magnitude : magnitude;
}

std::string FormatInteger(Integer integer) {
  if (integer.IsNegative()) return std::to_string(static_cast<std::int64_t>(integer.Bits()));
  return std::to_string(integer.Bits());
}

std::string FormatReal(double real) {
  char text[32];
  auto* const end = std::to_chars(text, text + sizeof text, real).ptr;
  return {text, end};
}

}  // namespace fernwick
