#include "value/utf8.h"

#include <cstdint>
#include <cstring>

namespace fernwick {
namespace {

bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// How many bytes a character beyond ASCII takes that begins with `lead`; 0 when none does.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0xC2) return 0;  // a continuation, or the start of an overlong form
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  if (lead < 0xF5) return 4;
  return 0;
}

bool IsOverlong(char32_t character, std::size_t length) {
  return (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
}

bool IsSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

// Whether eight bytes are all printable ASCII, the bulk of every property list.
bool AreAllPlain(const char* bytes) {
  constexpr std::uint64_t HighBits = 0x8080808080808080;
  constexpr std::uint64_t Blanks = 0x2020202020202020;
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return ((word | (word - Blanks)) & HighBits) == 0;
}

template <typename Accepts>
std::size_t FindFirstRejected(std::string_view text, Accepts accepts) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= 8 && AreAllPlain(text.data() + at)) {
      at += 8;
      continue;
    }
    const auto [character, length] = DecodeUtf8(text.substr(at));
    if (length == 0 || !accepts(character)) return at;
    at += length;
  }
  return NoPlace;
}

char32_t UnitAt(std::string_view bytes, std::size_t at, ByteOrder order) {
  const auto first = static_cast<unsigned char>(bytes[at]);
  const auto second = static_cast<unsigned char>(bytes[at + 1]);
  if (order == ByteOrder::BigEndian) return static_cast<char32_t>(first << 8 | second);
  return static_cast<char32_t>(second << 8 | first);
}

}  // namespace

DecodedCharacter DecodeUtf8(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = SequenceLength(lead);
  if (length == 0 || text.size() < length) return {0, 0};
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (!IsContinuation(byte)) return {0, 0};
    character = character << 6 | (byte & 0x3Fu);
  }
  if (IsOverlong(character, length) || IsSurrogate(character) || character > 0x10FFFF) {
    return {0, 0};
  }
  return {character, length};
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto continuation = [&](unsigned shift) { append(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) return append(character);
  if (character < 0x800) {
    append(0xC0 | character >> 6);
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    continuation(6);
  } else {
    append(0xF0 | character >> 18);
    continuation(12);
    continuation(6);
  }
  continuation(0);
}

bool IsTextCharacter(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return !IsSurrogate(character) && character != 0xFFFE && character != 0xFFFF &&
         character <= 0x10FFFF;
}

std::size_t FindInvalidUtf8(std::string_view text) {
  return FindFirstRejected(text, [](char32_t) { return true; });
}

std::size_t FindInvalidText(std::string_view text) {
  return FindFirstRejected(text, IsTextCharacter);
}

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

char32_t CombineSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

TranscodedText TranscodeUtf16(std::string_view bytes, ByteOrder order) {
  TranscodedText result{{}, NoPlace};
  result.text.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    result.invalidAt = at;
    if (bytes.size() - at < 2) return result;
    char32_t character = UnitAt(bytes, at, order);
    if (IsSurrogate(character)) {
      if (!IsHighSurrogate(character) || bytes.size() - at < 4) return result;
      const char32_t low = UnitAt(bytes, at + 2, order);
      if (!IsLowSurrogate(low)) return result;
      character = CombineSurrogates(character, low);
      at += 2;
    }
    AppendUtf8(result.text, character);
  }
  result.invalidAt = NoPlace;
  return result;
}

}  // namespace fernwick
