#include "value/unicode/text_position.h"

#include <gtest/gtest.h>

#include "testing/inputs/corruption.h"

namespace fernwick {
namespace {

using testing::Repeated;

struct PositionRow {
  std::string text;
  std::size_t offset;
  std::size_t line;
  std::size_t column;
};

TEST(TextPosition, CountsLinesAndCharactersFromOne) {
  const PositionRow rows[] = {
      {"", 0, 1, 1},
      {"abc", 0, 1, 1},
      {"abc", 2, 1, 3},
      {"abc", 3, 1, 4},
      {"a\nb", 1, 1, 2},    // the line feed ends its line
      {"a\nb", 2, 2, 1},    //
      {"a\nb", 3, 2, 2},    //
      {"a\rb", 2, 2, 1},    //
      {"a\r\nb", 2, 1, 3},  // between the two of one line end
      {"a\r\nb", 3, 2, 1},  //
      {"a\r\n\r\nb", 5, 3, 1},
      {"a\n\rb", 3, 3, 1},  // the other way round they are two
      {"a\r\rb", 3, 3, 1},
      {"a\r", 2, 2, 1},
      {"a\r\n", 2, 1, 3},
      {"\xC3\xA4", 2, 1, 2},  // a character, not its bytes
      {"\n\xF0\x9F\x98\x80x", 5, 2, 2},
      {"\xC3\xA4\nb", 4, 2, 2},
      {"\t\tx", 2, 1, 3},
  };
  for (const auto& [text, offset, line, column] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text) + " at " + std::to_string(offset));
    const auto position = PositionAt(text, offset);
    EXPECT_EQ(position.line, line);
    EXPECT_EQ(position.column, column);
  }
}

TEST(TextPosition, ReadsNothingAfterTheText) {
  const auto position = PositionAt(std::string_view("a\r\n").substr(0, 2), 2);
  EXPECT_EQ(position.line, 2u);
  EXPECT_EQ(position.column, 1u);
}

TEST(TextPosition, ErrorHasTheLineTheColumnAndTheMessage) {
  EXPECT_EQ(ErrorAt("a\nbcd", 4, "what is wrong"),
            (Error{"what is wrong", FileLocation{.line = 2, .column = 3}}));
}

TEST(Excerpt, TextOfFortyBytesStaysWhole) {
  EXPECT_EQ(Excerpt(""), "");
  EXPECT_EQ(Excerpt("short"), "short");
  EXPECT_EQ(Excerpt(Repeated("x", 40)), Repeated("x", 40));
}

TEST(Excerpt, LongerTextIsCut) {
  EXPECT_EQ(Excerpt(Repeated("x", 41)), Repeated("x", 40) + "...");
  EXPECT_EQ(Excerpt(Repeated("x", 100000)), Repeated("x", 40) + "...");
}

TEST(Excerpt, CutNeverSplitsACharacter) {
  EXPECT_EQ(Excerpt(Repeated("x", 39) + "\xC3\xA4"), Repeated("x", 39) + "...");
  EXPECT_EQ(Excerpt(Repeated("x", 38) + "\xF0\x9F\x98\x80"), Repeated("x", 38) + "...");
  EXPECT_EQ(Excerpt(Repeated("x", 38) + "\xC3\xA4y"), Repeated("x", 38) + "\xC3\xA4...");
}

TEST(Excerpt, BytesThatAreNotTextStayAsTheyAre) {
  EXPECT_EQ(Excerpt("a\xFF\xC3"), "a\xFF\xC3");
  EXPECT_EQ(Excerpt(Repeated("\x80", 40)), Repeated("\x80", 40));
  EXPECT_EQ(Excerpt(Repeated("\x80", 41)), "...");
}

TEST(Excerpt, OtherControlCharactersAreOctal) {
  EXPECT_EQ(Excerpt("a\x1B[0m\x7F\xC2\x85"), "a\\033[0m\\177\\205");
}

TEST(Excerpt, WhiteSpaceBecomesBlanksSoThatAMessageStaysOneLine) {
  EXPECT_EQ(Excerpt("a\nb\r\n\tc"), "a b   c");
  EXPECT_EQ(Excerpt(Repeated("\n", 41)), Repeated(" ", 40) + "...");
}

}  // namespace
}  // namespace fernwick
