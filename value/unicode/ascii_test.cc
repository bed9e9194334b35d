#include "value/unicode/ascii.h"

#include <gtest/gtest.h>

#include <string>

namespace fernwick {
namespace {

// Every character for which `predicate` is true, in the order of their codes.
std::string CharactersThat(bool (*predicate)(char)) {
  std::string found;
  for (int code = 0; code < 256; ++code) {
    const auto c = static_cast<char>(code);
    if (predicate(c)) found += c;
  }
  return found;
}

TEST(Ascii, WhiteSpace) {
  EXPECT_EQ(CharactersThat(IsXmlWhiteSpace), "\t\n\r ");
  EXPECT_EQ(CharactersThat(IsAsciiWhiteSpace), "\t\n\v\f\r ");
}

TEST(Ascii, DecimalDigits) {
  EXPECT_EQ(CharactersThat(IsDecimalDigit), "0123456789");
}

TEST(Ascii, LowerCaseOfLettersAlone) {
  for (int code = 0; code < 256; ++code) {
    const auto c = static_cast<char>(code);
    const auto place = std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ").find(c);
    EXPECT_EQ(ToLowerAscii(c),
              place == std::string::npos ? c : "abcdefghijklmnopqrstuvwxyz"[place]);
  }
}

TEST(Ascii, HexDigitsInEitherCase) {
  for (int code = 0; code < 256; ++code) {
    const auto place = std::string("0123456789abcdefABCDEF").find(static_cast<char>(code));
    const int value = static_cast<int>(place < 16 ? place : place - 6);
    EXPECT_EQ(HexDigitValue(static_cast<char>(code)), place == std::string::npos ? -1 : value);
  }
}

TEST(Ascii, EqualityIgnoresTheCaseOfLettersAlone) {
  EXPECT_TRUE(EqualsIgnoringCase("", ""));
  EXPECT_TRUE(EqualsIgnoringCase("Zed-1a", "zED-1A"));
  EXPECT_FALSE(EqualsIgnoringCase("a", "b"));
  EXPECT_FALSE(EqualsIgnoringCase("ab", "aa"));
  EXPECT_FALSE(EqualsIgnoringCase("ab", "a"));
  EXPECT_FALSE(EqualsIgnoringCase("a", "ab"));
  EXPECT_FALSE(EqualsIgnoringCase("@", "`"));
}

TEST(Ascii, SkipsLeadingWhiteSpaceAlone) {
  EXPECT_EQ(SkipAsciiWhiteSpace("\t\n\v\f\r a b "), "a b ");
  EXPECT_EQ(SkipAsciiWhiteSpace("a "), "a ");
  EXPECT_EQ(SkipAsciiWhiteSpace("  "), "");
  EXPECT_EQ(SkipAsciiWhiteSpace(""), "");
}

}  // namespace
}  // namespace fernwick
