#include "value/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "value/ascii.h"

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

// The bytes of a last group of two or three digits, which were left over when the padding began.
void AppendLastGroup(std::string& bytes, std::uint32_t group, unsigned digits) {
  group <<= 6 * (4 - digits);
  bytes.push_back(static_cast<char>(group >> 16));
  if (digits == 3) bytes.push_back(static_cast<char>(group >> 8));
}

void AppendGroup(std::string& bytes, std::uint32_t group) {
  bytes.push_back(static_cast<char>(group >> 16));
  bytes.push_back(static_cast<char>(group >> 8));
  bytes.push_back(static_cast<char>(group));
}

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;  // in the low 24 bits; what is above them is never looked at
  unsigned digits = 0;      // of the group begun
  unsigned padding = 0;     // signs seen; nothing but more of them may follow
  for (const char c : text) {
    if (IsXmlWhiteSpace(c)) continue;
    if (c == '=') {
      if (++padding > 2) return std::nullopt;
      continue;
    }
    const std::uint8_t digit = DigitOf[static_cast<unsigned char>(c)];
    if (digit == NoDigit || padding > 0) return std::nullopt;
    group = group << 6 | digit;
    if (++digits < 4) continue;
    AppendGroup(bytes, group);
    digits = 0;
  }
  if (digits == 0 && padding == 0) return bytes;
  if (digits + padding != 4) return std::nullopt;
  AppendLastGroup(bytes, group, digits);
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
