// Decoding uses a table from byte to digit. Groups of four digits without white space are decoded
// four at a time, with one test for all of them; what interrupts them (white space, padding, an
// error) goes through a loop of one character at a time. Linear.

#include "value/xml/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "value/unicode/ascii.h"

namespace fernwick {
namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t NoDigit = 0xFF;

constexpr auto DigitOf = [] {
  std::array<std::uint8_t, 256> table{};
  table.fill(NoDigit);
  for (std::size_t i = 0; i < Alphabet.size(); ++i) {
    table[static_cast<unsigned char>(Alphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return table;
}();

// Writes the three bytes of a group's low 24 bits. Returns the end of what it wrote.
char* WriteGroup(std::uint32_t group, char* out) {
  *out++ = static_cast<char>(group >> 16);
  *out++ = static_cast<char>(group >> 8);
  *out++ = static_cast<char>(group);
  return out;
}

// Decodes consecutive whole groups of four digits from `at` on, and moves `at`
// past them. The bytes are written from `out` on; returns the end of what it wrote.
char* DecodeGroups(std::string_view text, std::size_t& at, char* out) {
  const auto digit = [&](std::size_t i) -> std::uint32_t {
    return DigitOf[static_cast<unsigned char>(text[at + i])];
  };
  for (; text.size() - at >= 4; at += 4) {
    const std::uint32_t digits[] = {digit(0), digit(1), digit(2), digit(3)};
    if ((digits[0] | digits[1] | digits[2] | digits[3]) > 0x3F) break;
    out = WriteGroup(digits[0] << 18 | digits[1] << 12 | digits[2] << 6 | digits[3], out);
  }
  return out;
}

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
  std::string bytes(text.size() / 4 * 3, '\0');
  char* out = bytes.data();
  std::uint32_t group = 0;  // its digits so far, in the low bits
  unsigned digits = 0;      // in the current group
  unsigned padding = 0;     // "=" so far; only "=" and white space may follow
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (digits == 0 && padding == 0) out = DecodeGroups(text, at, out);
    if (at == text.size()) break;
    if (IsXmlWhiteSpace(text[at])) continue;
    if (text[at] == '=') {
      if (++padding > 2) return std::nullopt;
      continue;
    }
    const std::uint8_t digit = DigitOf[static_cast<unsigned char>(text[at])];
    if (digit == NoDigit || padding > 0) return std::nullopt;
    group = group << 6 | digit;
    if (++digits < 4) continue;
    out = WriteGroup(group, out);
    digits = 0;
  }
  if (digits + padding != 0) {
    if (digits + padding != 4) return std::nullopt;
    out = WriteGroup(group << 6 * padding, out) - padding;
  }
  bytes.resize(static_cast<std::size_t>(out - bytes.data()));
  return bytes;
}

std::string EncodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t left = bytes.size() - at;
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = group << 8 | (i < left ? static_cast<unsigned char>(bytes[at + i]) : 0u);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text.push_back(i <= left ? Alphabet[group >> (18 - 6 * i) & 0x3F] : '=');
    }
  }
  return text;
}

}  // namespace fernwick
