#include "value/unicode/utf8.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "testing/inputs/corruption.h"

namespace fernwick {
namespace {

using testing::Repeated;

constexpr char32_t LastCharacter = 0x10FFFF;

bool IsScalarValue(char32_t character) {
  return character <= LastCharacter && (character < 0xD800 || character > 0xDFFF);
}

std::string Encoded(char32_t character) {
  std::string text;
  AppendUtf8(text, character);
  return text;
}

// Sequences that are not UTF-8, whatever follows them.
const std::string IllFormed[] = {
    "\x80",              // a continuation without a lead
    "\xBF",              //
    "\xC0\x80",          // overlong
    "\xC1\xBF",          //
    "\xE0\x80\x80",      //
    "\xE0\x9F\xBF",      //
    "\xF0\x80\x80\x80",  //
    "\xF0\x8F\xBF\xBF",  //
    "\xED\xA0\x80",      // surrogates
    "\xED\xBF\xBF",      //
    "\xF4\x90\x80\x80",  // beyond U+10FFFF
    "\xF5\x80\x80\x80",  //
    "\xF8\x88\x80\x80",  // no lead at all
    "\xFE",              //
    "\xFF",              //
    "\xC3(",             // continuations missing
    "\xE2\x82(",         //
    "\xE2(\xA1",         //
    "\xF0\x9F\x98(",     //
    "\xF0(\x8C\xBC",     //
};

TEST(Utf8, EveryCharacterReadsBackAsItWasAppended) {
  for (char32_t character = 0; character <= LastCharacter; ++character) {
    if (!IsScalarValue(character)) continue;
    const auto text = Encoded(character);
    const auto decoded = DecodeUtf8(text + "\x80");
    ASSERT_EQ(decoded.character, character);
    ASSERT_EQ(decoded.length, text.size());
  }
}

TEST(Utf8, EncodesIntoTheShortestForm) {
  EXPECT_EQ(Encoded(0x7F), "\x7F");
  EXPECT_EQ(Encoded(0x80), "\xC2\x80");
  EXPECT_EQ(Encoded(0x7FF), "\xDF\xBF");
  EXPECT_EQ(Encoded(0x800), "\xE0\xA0\x80");
  EXPECT_EQ(Encoded(0xFFFF), "\xEF\xBF\xBF");
  EXPECT_EQ(Encoded(0x10000), "\xF0\x90\x80\x80");
  EXPECT_EQ(Encoded(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8, IllFormedSequenceDecodesToNothing) {
  for (const auto& bytes : IllFormed) {
    const auto decoded = DecodeUtf8(bytes);
    EXPECT_EQ(decoded.length, 0u) << ::testing::PrintToString(bytes);
    EXPECT_EQ(decoded.character, 0u) << ::testing::PrintToString(bytes);
  }
}

TEST(Utf8, SequenceThatIsCutShortDecodesToNothing) {
  for (const char32_t character : {0x80u, 0x7FFu, 0x800u, 0xFFFDu, 0x10000u, 0x10FFFFu}) {
    const auto text = Encoded(character);
    for (std::size_t size = 1; size < text.size(); ++size) {
      const auto cutShort = std::string_view(text).substr(0, size);  // the rest follows in memory
      EXPECT_EQ(DecodeUtf8(cutShort).length, 0u) << std::hex << unsigned{character};
    }
  }
}

TEST(Utf8, FindsTheFirstIllFormedByteAfterAnyLength) {
  for (const auto& bytes : IllFormed) {
    for (std::size_t before = 0; before < 20; ++before) {
      const auto text = Repeated("x", before) + bytes + Repeated("y", 20);
      EXPECT_EQ(FindInvalidUtf8(text), before) << ::testing::PrintToString(bytes);
      EXPECT_EQ(FindInvalidText(text), before) << ::testing::PrintToString(bytes);
    }
  }
}

TEST(Utf8, FindsTheStartOfACharacterThatTheEndCutsShort) {
  EXPECT_EQ(FindInvalidUtf8("ab\xF0\x9F\x98"), 2u);
  EXPECT_EQ(FindInvalidText("ab\xC3"), 2u);
}

TEST(Utf8, FindsNothingInWellFormedText) {
  for (const std::string text : {"", "plain", "a longer, plain text", "\xC3\xA4\xF0\x9F\x98\x80"}) {
    EXPECT_EQ(FindInvalidUtf8(text), npos) << text;
    EXPECT_EQ(FindInvalidText(text), npos) << text;
  }
}

// The text ends where the memory that may be read ends.
TEST(Utf8, ReadsNothingAfterTheText) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const pages =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  char* const end = static_cast<char*>(pages) + page;
  ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
  for (std::size_t size = 0; size < 20; ++size) {
    std::memset(end - size, 'x', size);
    EXPECT_EQ(FindInvalidText({end - size, size}), npos) << size;
  }
  munmap(pages, 2 * page);
}

TEST(Utf8, ControlCharactersAreUtf8) {
  for (char control = 0; control < 0x20; ++control) {
    EXPECT_EQ(FindInvalidUtf8(Repeated(std::string(1, control), 9)), npos) << int{control};
  }
}

TEST(TextCharacter, ControlCharactersBelowTheBlankAreNoneButThree) {
  for (char32_t character = 0; character < 0x20; ++character) {
    const bool isText = character == '\t' || character == '\n' || character == '\r';
    EXPECT_EQ(IsTextCharacter(character), isText) << unsigned{character};
  }
}

TEST(TextCharacter, BoundsOfWhatXmlCarries) {
  for (const char32_t accepted : {0x20u, 0x7Fu, 0x80u, 0x9Fu, 0xD7FFu, 0xE000u, 0xFDD0u, 0xFFFDu,
                                  0x10000u, 0x1FFFEu, 0x10FFFFu}) {
    EXPECT_TRUE(IsTextCharacter(accepted)) << std::hex << unsigned{accepted};
  }
  for (const char32_t rejected :
       {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0xFFFEu, 0xFFFFu, 0x110000u}) {
    EXPECT_FALSE(IsTextCharacter(rejected)) << std::hex << unsigned{rejected};
  }
}

TEST(Utf8, FindsWhatXmlCannotCarryAfterAnyLength) {
  for (const char32_t character : {0x0u, 0x1u, 0x8u, 0xBu, 0xCu, 0xEu, 0x1Fu, 0xFFFEu, 0xFFFFu}) {
    for (std::size_t before = 0; before < 20; ++before) {
      const auto text = Repeated("x", before) + Encoded(character) + Repeated("y", 20);
      EXPECT_EQ(FindInvalidText(text), before) << std::hex << unsigned{character};
      EXPECT_EQ(FindInvalidUtf8(text), npos) << std::hex << unsigned{character};
    }
  }
}

TEST(Utf8, FindsNothingWrongWithLineEndsTabsAndDeleteAnywhere) {
  for (const std::string character : {"\t", "\n", "\r", "\x7F", " "}) {
    for (std::size_t before = 0; before < 20; ++before) {
      const auto text = Repeated("x", before) + character + Repeated("y", 20);
      EXPECT_EQ(FindInvalidText(text), npos) << ::testing::PrintToString(text);
    }
  }
}

TEST(TextCharacter, PlainAsciiIsWhatIsAsciiAndWhatXmlCarries) {
  for (std::size_t before = 0; before < 70; ++before) {
    for (unsigned byte = 0; byte < 256; ++byte) {
      std::string text(before, 'x');
      text += static_cast<char>(byte);
      const bool isPlain = byte < 0x80 && IsTextCharacter(byte);
      ASSERT_EQ(IsPlainAscii(text), isPlain) << before << ' ' << byte;
      ASSERT_EQ(IsPlainAscii(text + "\ty\n\rz"), isPlain) << before << ' ' << byte;
    }
  }
  EXPECT_TRUE(IsPlainAscii(""));
}

TEST(Utf16, DistinguishesHighAndLowSurrogates) {
  EXPECT_FALSE(IsHighSurrogate(0xD7FF));
  EXPECT_TRUE(IsHighSurrogate(0xD800));
  EXPECT_TRUE(IsHighSurrogate(0xDBFF));
  EXPECT_FALSE(IsHighSurrogate(0xDC00));
  EXPECT_FALSE(IsLowSurrogate(0xDBFF));
  EXPECT_TRUE(IsLowSurrogate(0xDC00));
  EXPECT_TRUE(IsLowSurrogate(0xDFFF));
  EXPECT_FALSE(IsLowSurrogate(0xE000));
}

TEST(Utf16, SurrogatesCombine) {
  EXPECT_EQ(CombineSurrogates(0xD800, 0xDC00), 0x10000u);
  EXPECT_EQ(CombineSurrogates(0xD83D, 0xDE00), 0x1F600u);
  EXPECT_EQ(CombineSurrogates(0xDBFF, 0xDFFF), 0x10FFFFu);
}

struct TranscodedRow {
  std::string bigEndian;
  std::string text;
  std::size_t invalidAt;
};

TEST(Utf8, CountsCharacters) {
  EXPECT_EQ(CountCharacters(""), 0u);
  EXPECT_EQ(CountCharacters("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z"), 5u);
}

TEST(Utf8, EndsShortenedTextsBeforeACharacter) {
  const std::string_view text = "a\xC3\xA4\xE2\x82\xAC";
  const std::size_t sizes[] = {0, 1, 1, 3, 3, 3, 6, 6};
  for (std::size_t i = 0; i < std::size(sizes); ++i) {
    EXPECT_EQ(FirstCharacters(text, i), text.substr(0, sizes[i])) << i;
  }
  EXPECT_EQ(FirstCharacters("\x80\x80\x80\x80\x80", 4), "");
}

const TranscodedRow TranscodedRows[] = {
    {"", "", npos},
    {{"\0a\0b", 4}, "ab", npos},
    {{"\0\0", 2}, {"\0", 1}, npos},
    {{"\x00\xE4\x20\xAC", 4}, "\xC3\xA4\xE2\x82\xAC", npos},
    {{"\xD8\x3D\xDE\x00\0a", 6},
     "\xF0\x9F\x98\x80"
     "a",
     npos},
    {{"\xDB\xFF\xDF\xFF", 4}, "\xF4\x8F\xBF\xBF", npos},
    {{"\xFF\xFE", 2}, "\xEF\xBF\xBE", npos},
    {{"\0a\0", 3}, "a", 2},                // an odd last byte
    {{"\0", 1}, "", 0},                    //
    {{"\0a\xD8\x3D", 4}, "a", 2},          // a high surrogate at the end
    {{"\0a\xD8\x3D\xDE", 5}, "a", 2},      //
    {{"\0a\xD8\x3D\0b", 6}, "a", 2},       // one without its low one
    {{"\0a\xD8\x3D\xD8\x3D", 6}, "a", 2},  //
    {{"\0a\xDE\x00\0b", 6}, "a", 2},       // a low one alone
    {{"\xDE\x00\xD8\x3D", 4}, "", 0},      // the wrong way round
};

std::string WithBytesOfUnitsSwapped(std::string bytes) {
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

TEST(Utf16, TranscodesUpToTheFirstFaultInEitherByteOrder) {
  for (const auto& [bytes, text, invalidAt] : TranscodedRows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    const auto big = TranscodeUtf16(bytes, ByteOrder::BigEndian);
    EXPECT_EQ(big.text, text);
    EXPECT_EQ(big.invalidAt, invalidAt);
    const auto little = TranscodeUtf16(WithBytesOfUnitsSwapped(bytes), ByteOrder::LittleEndian);
    EXPECT_EQ(little.text, text);
    EXPECT_EQ(little.invalidAt, invalidAt);
  }
}

}  // namespace
}  // namespace fernwick
