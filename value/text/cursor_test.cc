#include "value/text/cursor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fernwick {
namespace {

struct OffsetRow {
  std::string text;
  std::size_t offset;
};

TEST(TextCursor, SkipsWhiteSpaceAndBothKindsOfComments) {
  const OffsetRow rows[] = {
      {"", 0},
      {"a", 0},
      {" \t\n\r\v\fa", 6},
      {"//a", 3},
      {"//a\nb", 4},
      {"//a\rb", 4},
      {"// a // b\nc", 10},
      {"//", 2},
      {"//a/*\nb", 6},
      {"/**/a", 4},
      {"/* a * / */b", 11},
      {"/***/a", 5},
      {"/* // */a", 8},
      {"/* a\nb */ // c\n /**/d", 20},
      {"/* /* */a", 8},
      {"/a", 0},
      {"*/a", 0},
      {"/ /a", 0},
  };
  for (const auto& [text, offset] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text));
    TextCursor cursor(text);
    EXPECT_TRUE(cursor.SkipBlanks());
    EXPECT_EQ(cursor.Offset(), offset);
    EXPECT_FALSE(cursor.Fault().IsSet());
  }
}

TEST(TextCursor, RejectsACommentThatDoesNotEnd) {
  const OffsetRow rows[] = {{"/*", 0}, {"/*/", 0}, {" /* a *", 1}, {"/**/ /* // \n", 5}};
  for (const auto& [text, offset] : rows) {
    SCOPED_TRACE(text);
    TextCursor cursor(text);
    EXPECT_FALSE(cursor.SkipBlanks());
    EXPECT_EQ(cursor.Fault().Offset(), offset);
    EXPECT_EQ(cursor.Fault().Message(), "a comment does not end");
  }
}

TEST(TextCursor, ConsumesACharacterThatComesNext) {
  TextCursor cursor("a'");
  EXPECT_FALSE(cursor.Consume('b'));
  EXPECT_EQ(cursor.Offset(), 0u);
  EXPECT_TRUE(cursor.Consume('a'));
  EXPECT_TRUE(cursor.LookingAtQuote());
  EXPECT_TRUE(cursor.Consume('\''));
  EXPECT_TRUE(cursor.AtEnd());
  EXPECT_FALSE(cursor.Consume('\0'));
  EXPECT_FALSE(cursor.LookingAtQuote());
}

struct QuotedRow {
  std::string text;
  std::string string;
};

TEST(TextCursor, ReadsQuotedStrings) {
  const QuotedRow rows[] = {
      {R"("")", ""},
      {R"('')", ""},
      {R"("a b")", "a b"},
      {R"('a "b"')", "a \"b\""},
      {R"("it's")", "it's"},
      {"\"a\nb\r\n\tc\"", "a\nb\r\n\tc"},
      {R"("// /* */ ; }")", "// /* */ ; }"},
      {"\"\xC3\xA4\"", "\xC3\xA4"},
      {R"("\"\'\\\?")", "\"'\\?"},
      {R"('\'\"')", "'\""},
      {R"("\n\r\t")", "\n\r\t"},
      {R"("a\
b")",
       "a\nb"},
      {R"("\z\u\x\Q\ ")", "zuxQ "},
      {"\"\\\xC3\xA4\"", "\xC3\xA4"},
      {R"("\101")", "A"},
      {R"("\1011")", "A1"},
      {R"("\60\71")", "09"},
      {R"("\11x\118")", "\tx\t8"},
      {R"("\0411")", "!1"},
      {R"("\8\9")", "89"},
      {R"("\200\344\377")", "\xC2\x80\xC3\xA4\xC3\xBF"},
      {R"("\U0041\U00e4\U20AC\U20ac")", "A\xC3\xA4\xE2\x82\xAC\xE2\x82\xAC"},
      {R"("\U00410")", "A0"},
      {R"("\Ud83d\UDE00")", "\xF0\x9F\x98\x80"},
      {R"("\UD800\UDC00\UDBFF\UDFFF")", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
      {R"("\UFFFD")", "\xEF\xBF\xBD"},
  };
  for (const auto& [text, string] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text));
    const auto source = text + " after";
    TextCursor cursor(source);
    std::string_view found;
    std::string decoded = "left over";
    EXPECT_TRUE(cursor.ReadQuoted(found, decoded));
    EXPECT_EQ(found, string);
    EXPECT_EQ(cursor.Offset(), text.size());
    EXPECT_EQ(cursor.Fault().Message(), "");
  }
}

TEST(TextCursor, QuotedStringViewsTheTextUnlessAnEscapeIsInIt) {
  const std::string text = R"("plain"'esc\aped')";
  TextCursor cursor(text);
  std::string_view string;
  std::string decoded;
  ASSERT_TRUE(cursor.ReadQuoted(string, decoded));
  EXPECT_EQ(string.data(), text.data() + 1);
  EXPECT_FALSE(cursor.ReadQuoted(string, decoded));  // \a is a bell
  TextCursor other(R"('esc\"aped')");
  ASSERT_TRUE(other.ReadQuoted(string, decoded));
  EXPECT_EQ(string.data(), decoded.data());
}

struct FaultRow {
  std::string text;
  std::size_t offset;
  std::string message;
};

TEST(TextCursor, RejectsOtherQuotedStrings) {
  const std::string noEnd = "a quoted string does not end";
  const std::string notXmlCharacter = "a string contains a character that XML cannot carry";
  const std::string noDigits = "a \\U escape needs four hexadecimal digits";
  const std::string half = "a \\U escape is half of a surrogate pair";
  const FaultRow rows[] = {
      {"\"", 0, noEnd},
      {"\"a'", 0, noEnd},
      {"'a\"", 0, noEnd},
      {"\"a\\\"", 0, noEnd},
      {"\"a\\", 2, "an escape does not end"},
      {"\"a\\12", 0, noEnd},
      {R"("\0")", 0, notXmlCharacter},
      {R"("\000")", 0, notXmlCharacter},
      {R"("\a")", 0, notXmlCharacter},
      {R"("\b")", 0, notXmlCharacter},
      {R"("\f")", 0, notXmlCharacter},
      {R"("\v")", 0, notXmlCharacter},
      {R"("\1")", 0, notXmlCharacter},
      {R"("\37")", 0, notXmlCharacter},
      {R"("\U0000")", 0, notXmlCharacter},
      {R"("\UFFFE")", 0, notXmlCharacter},
      {R"("\UFFFF")", 0, notXmlCharacter},
      {"\"a\x01\"", 0, notXmlCharacter},
      {{"\"a\0\"", 4}, 0, notXmlCharacter},
      {"\"\xEF\xBF\xBF\"", 0, notXmlCharacter},
      {R"("a\400")", 2, "an octal escape is greater than \\377"},
      {R"("\777")", 1, "an octal escape is greater than \\377"},
      {R"("\U")", 1, noDigits},
      {R"("\U123")", 1, noDigits},
      {R"("\U 123")", 1, noDigits},
      {R"("\U12g4")", 1, noDigits},
      {R"("\U)", 1, noDigits},
      {R"("\U123)", 1, noDigits},
      {R"("ab\Ud83d")", 3, half},
      {R"("\Ude00")", 1, half},
      {R"("\Ude00\Ud83d")", 1, half},
      {R"("\Ud83d\Ud83d")", 1, half},
      {R"("\Ud83d\U0041")", 1, half},
      {R"("\Ud83dx\Ude00")", 1, half},
      {R"("\Ud83d\n")", 1, half},
      {R"("\Ud83d\U12")", 7, noDigits},
  };
  for (const auto& [text, offset, message] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text));
    TextCursor cursor(text);
    std::string_view string;
    std::string decoded;
    EXPECT_FALSE(cursor.ReadQuoted(string, decoded));
    EXPECT_EQ(cursor.Fault().Offset(), offset);
    EXPECT_EQ(cursor.Fault().Message(), message);
  }
}

TEST(TextCursor, UnquotedStringIsTheLongestRunThatNeedsNoQuotes) {
  const QuotedRow rows[] = {
      {"", ""},           {"abc", "abc"},   {"azAZ09_$/:.-", "azAZ09_$/:.-"},
      {"a b", "a"},       {"a;b", "a"},     {"http://host/path//x", "http://host/path//x"},
      {"a/*b*/", "a/"},   {"-1.5", "-1.5"}, {"a+b", "a"},
      {"@a", ""},         {"\"a\"", ""},    {"a\"b\"", "a"},
      {"a\xC3\xA4", "a"}, {"\xC3\xA4", ""}, {"a=b", "a"},
  };
  for (const auto& [text, string] : rows) {
    TextCursor cursor(text);
    EXPECT_EQ(cursor.ReadUnquoted(), string) << text;
    EXPECT_EQ(cursor.Offset(), string.size()) << text;
  }
}

TEST(TextCursor, EveryAsciiCharacterNeedsQuotesOrNot) {
  const std::string unquoted =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_$/:.-";
  for (int code = 0; code < 128; ++code) {
    const std::string text(1, static_cast<char>(code));
    TextCursor cursor(text);
    const bool needsNone = unquoted.find(text) != std::string::npos;
    EXPECT_EQ(cursor.ReadUnquoted(), needsNone ? text : "") << code;
  }
}

TEST(TextCursor, ReadsData) {
  const QuotedRow rows[] = {
      {"<>", ""},
      {"< >", ""},
      {"<00>", {"\0", 1}},
      {"<0fbd77>", "\x0F\xBD\x77"},
      {"<0FbD>", "\x0F\xBD"},
      {"< 0f bd\n77 >", "\x0F\xBD\x77"},
      {"<0 f>", "\x0F"},
      {"<\v0\ff\t>", "\x0F"},
  };
  for (const auto& [text, bytes] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text));
    TextCursor cursor(text);
    std::string found;
    EXPECT_TRUE(cursor.ReadData(found));
    EXPECT_EQ(found, bytes);
    EXPECT_TRUE(cursor.AtEnd());
  }
}

TEST(TextCursor, RejectsOtherData) {
  const std::string notHex = "data contains something other than hexadecimal digits";
  const FaultRow rows[] = {
      {"<", 0, "data does not end"},
      {"<0f", 0, "data does not end"},
      {"<0", 0, "data does not end"},
      {"<0>", 0, "data has an odd number of digits"},
      {"<0f b>", 0, "data has an odd number of digits"},
      {"<0g>", 2, notHex},
      {"<0x0f>", 2, notHex},
      {"<0f,bd>", 3, notHex},
      {"<0f /* */>", 4, notHex},
      {"<*I5>", 1, notHex},
      {"<*BY>", 1, notHex},
      {"<[Zg==]>", 1, notHex},
      {"<\xC3\xA4>", 1, notHex},
  };
  for (const auto& [text, offset, message] : rows) {
    SCOPED_TRACE(text);
    TextCursor cursor(text);
    std::string bytes;
    EXPECT_FALSE(cursor.ReadData(bytes));
    EXPECT_EQ(cursor.Fault().Offset(), offset);
    EXPECT_EQ(cursor.Fault().Message(), message);
  }
}

}  // namespace
}  // namespace fernwick
