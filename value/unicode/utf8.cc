// Validation in blocks: nearly all text is ASCII, so blocks of 32 bytes are tested as a whole, in a
// loop without branches that the compiler turns into vector instructions, and only a block with
// another byte is decoded character by character. Linear, at several bytes a cycle for ASCII.

#include "value/unicode/utf8.h"

#include <algorithm>

namespace fernwick {
namespace {

// The length in bytes of the character beyond ASCII that begins with `lead`; 0 when none does.
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

constexpr std::size_t BlockSize = 32;

// Whether the byte is an ASCII character that a text can carry, the bulk of every property list.
constexpr bool IsPlain(unsigned char byte) {
  const bool isWhite = (byte == '\t') | (byte == '\n') | (byte == '\r');
  return (byte < 0x80) & ((byte >= 0x20) | isWhite);
}

// Whether all bytes of a run are plain. With a constant length and no early exit the compiler
// vectorises the loop.
bool AreAllPlain(const char* run, std::size_t size) {
  unsigned char refused = 0;
  for (std::size_t i = 0; i < size; ++i) {
    refused |= static_cast<unsigned char>(!IsPlain(static_cast<unsigned char>(run[i])));
  }
  return refused == 0;
}

// The length of the plain prefix of a text, in whole blocks of `Size` bytes.
template <std::size_t Size>
std::size_t PlainPrefixLength(std::string_view text) {
  std::size_t at = 0;
  while (text.size() - at >= Size && AreAllPlain(text.data() + at, Size)) at += Size;
  return at;
}

template <typename Accepts>
std::size_t FindFirstRejected(std::string_view text, Accepts accepts) {
  std::size_t at = 0;
  while (at < text.size()) {
    at += PlainPrefixLength<BlockSize>(text.substr(at));
    const std::size_t end = std::min(text.size(), at + BlockSize);
    while (at < end) {
      if (IsPlain(static_cast<unsigned char>(text[at]))) {
        ++at;
        continue;
      }
      const auto [character, length] = DecodeUtf8(text.substr(at));
      if (length == 0 || !accepts(character)) return at;
      at += length;
    }
  }
  return npos;
}

char32_t UnitAt(std::string_view bytes, std::size_t at, ByteOrder order) {
  const auto first = static_cast<unsigned char>(bytes[at]);
  const auto second = static_cast<unsigned char>(bytes[at + 1]);
  if (order == ByteOrder::BigEndian) return static_cast<char32_t>(first << 8 | second);
  return static_cast<char32_t>(second << 8 | first);
}

}  // namespace

std::size_t CountCharacters(std::string_view text) {
  const auto continuations = std::ranges::count_if(text, IsContinuation);
  return text.size() - static_cast<std::size_t>(continuations);
}

std::string_view FirstCharacters(std::string_view text, std::size_t maxSize) {
  if (text.size() <= maxSize) return text;
  auto size = maxSize;
  while (size > 0 && IsContinuation(text[size])) --size;
  return text.substr(0, size);
}

DecodedCharacter DecodeUtf8(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = SequenceLength(lead);
  if (length == 0 || text.size() < length) return {0, 0};
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[i])) return {0, 0};
    character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
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

bool IsPlainAscii(std::string_view text) {
  text.remove_prefix(PlainPrefixLength<BlockSize>(text));
  text.remove_prefix(PlainPrefixLength<8>(text));  // most are short
  return text.size() < 8 && AreAllPlain(text.data(), text.size());
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
  TranscodedText result{{}, npos};
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
  result.invalidAt = npos;
  return result;
}

}  // namespace fernwick
