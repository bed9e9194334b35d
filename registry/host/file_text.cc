#include "registry/host/file_text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "value/unicode/ascii.h"

namespace fernwick {

std::string_view Trimmed(std::string_view text) {
  text = SkipAsciiWhiteSpace(text);
  while (!text.empty() && IsAsciiWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view WithoutLineEnd(std::string_view text) {
  if (text.ends_with('\n')) text.remove_suffix(1);
  return text;
}

bool HasLine(std::string_view text, std::string_view line) {
  while (!text.empty()) {
    const auto next = text.substr(0, text.find('\n'));
    if (next == line) return true;
    text.remove_prefix(std::min(next.size() + 1, text.size()));
  }
  return false;
}

std::optional<std::uint64_t> ParseDigits(std::string_view text, int base) {
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<std::uint64_t> ParseCNumber(std::string_view text) {
  text = Trimmed(text);
  if (text.starts_with("0x") || text.starts_with("0X")) return ParseDigits(text.substr(2), 16);
  return ParseDigits(text, text.starts_with('0') ? 8 : 10);
}

}  // namespace fernwick
