#include "registry/host/file_text.h"

#include <gtest/gtest.h>

#include <optional>

namespace fernwick {
namespace {

TEST(Trimmed, HasNoWhiteSpaceAtItsEnds) {
  EXPECT_EQ(Trimmed(" \t\v\f\r\n a b \n"), "a b");
  EXPECT_EQ(Trimmed(" \n"), "");
  EXPECT_EQ(Trimmed("\u00A0"), "\u00A0");
}

TEST(WithoutLineEnd, RemovesOneLineFeed) {
  EXPECT_EQ(WithoutLineEnd("a \n"), "a ");
  EXPECT_EQ(WithoutLineEnd("a\n\n"), "a\n");
  EXPECT_EQ(WithoutLineEnd("a"), "a");
  EXPECT_EQ(WithoutLineEnd(""), "");
}

TEST(HasLine, FindsWholeLinesAlone) {
  EXPECT_TRUE(HasLine("a=1", "a=1"));
  EXPECT_TRUE(HasLine("b\na=1\n", "a=1"));
  EXPECT_TRUE(HasLine("a=1\nb", "a=1"));
  EXPECT_FALSE(HasLine("a=12\nxa=1\n a=1\n", "a=1"));
  EXPECT_FALSE(HasLine("", "a=1"));
}

TEST(ParseDigits, ReadsTheWholeText) {
  EXPECT_EQ(ParseDigits("0", 10), 0u);
  EXPECT_EQ(ParseDigits("007", 10), 7u);
  EXPECT_EQ(ParseDigits("1aF", 16), 0x1AFu);
  EXPECT_EQ(ParseDigits("ffffffffffffffff", 16), 0xFFFFFFFFFFFFFFFFu);
}

TEST(ParseDigits, OfAnythingElseIsAbsent) {
  for (const char* text : {"", " 1", "1 ", "+1", "-1", "0x1", "1.0", "a", "1\n"}) {
    EXPECT_EQ(ParseDigits(text, 10), std::nullopt) << text;
  }
  EXPECT_EQ(ParseDigits("10000000000000000", 16), std::nullopt);
}

TEST(ParseCNumber, ReadsTheThreeBases) {
  EXPECT_EQ(ParseCNumber("0x8086\n"), 0x8086u);
  EXPECT_EQ(ParseCNumber(" 0X1f "), 0x1Fu);
  EXPECT_EQ(ParseCNumber("017"), 15u);
  EXPECT_EQ(ParseCNumber("17"), 17u);
  EXPECT_EQ(ParseCNumber("0"), 0u);
}

TEST(ParseCNumber, OfAnythingElseIsAbsent) {
  for (const char* text : {"", "0x", "08", "0x1g", "-1", "1 2", "0x 1", "0b1"}) {
    EXPECT_EQ(ParseCNumber(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace fernwick
