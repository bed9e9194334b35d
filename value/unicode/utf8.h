#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fernwick {

/// The offset that means "not found", as in std::string_view.
inline constexpr std::size_t npos = std::string_view::npos;

/// What is written instead of a character that cannot be written.
inline constexpr char32_t ReplacementCharacter = U'\uFFFD';

/// One character at the start of a text. The length and the character are 0 when the text does
/// not begin with well-formed UTF-8.
struct DecodedCharacter {
  char32_t character;
  std::size_t length;  // bytes
};

/// Whether the byte is not the first of its character.
constexpr bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The number of characters in well-formed UTF-8.
std::size_t CountCharacters(std::string_view text);

/// The first bytes of a text, at most so many, up to the start of a character. That is none where
/// so many bytes only continue characters, which is not UTF-8.
std::string_view FirstCharacters(std::string_view text, std::size_t maxSize);

/// Decodes the first character of `text`. REQUIRES: `text` is not empty.
DecodedCharacter DecodeUtf8(std::string_view text);

/// Appends a character. REQUIRES: a Unicode scalar value.
void AppendUtf8(std::string& text, char32_t character);

/// Whether an XML document can contain the character: tab, line feed, carriage return and
/// everything from U+0020 on except surrogates, U+FFFE and U+FFFF.
bool IsTextCharacter(char32_t character);

/// Whether `text` consists of ASCII characters that an XML document can contain.
bool IsPlainAscii(std::string_view text);

/// The offset of the first byte that is not part of well-formed UTF-8, or npos.
std::size_t FindInvalidUtf8(std::string_view text);

/// The offset of the first character that is not well-formed or that an XML document cannot
/// contain, or npos.
std::size_t FindInvalidText(std::string_view text);

/// Whether a unit of UTF-16 is the first or the second of a pair.
bool IsHighSurrogate(char32_t unit);
bool IsLowSurrogate(char32_t unit);

/// The character of a surrogate pair.
char32_t CombineSurrogates(char32_t high, char32_t low);

/// Which byte of a unit of UTF-16 comes first.
enum class ByteOrder { BigEndian, LittleEndian };

/// UTF-16 transcoded to UTF-8, up to the first fault.
struct TranscodedText {
  std::string text;       // everything before the first fault
  std::size_t invalidAt;  // offset of the fault in the UTF-16 bytes, or npos
};

/// Transcodes without looking for a byte-order mark. A lone surrogate or an odd last byte is a
/// fault.
TranscodedText TranscodeUtf16(std::string_view bytes, ByteOrder order);

}  // namespace fernwick
