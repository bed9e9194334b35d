#include "lab/what_if/value_text.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Bytes;
using testing::DateOf;
using testing::Dict;
using testing::List;

void ExpectValue(std::string_view text, const PropertyValue& expected) {
  const auto parsed = ParseValueText(text);
  ASSERT_TRUE(parsed) << text << ": " << Describe(parsed.Error());
  EXPECT_EQ(parsed->value, expected) << text;
}

std::string ErrorOfText(std::string_view text) {
  const auto parsed = ParseValueText(text);
  return parsed ? "is a value" : Describe(parsed.Error());
}

TEST(ParseValueText, ReadsIntegers) {
  ExpectValue("5", 5);
  ExpectValue("-5", -5);
  ExpectValue("+5", 5);
  ExpectValue("0x1F", 31);
  ExpectValue("0X1f", 31);
  ExpectValue("18446744073709551615", 18446744073709551615u);
}

TEST(ParseValueText, ReadsReals) {
  ExpectValue("41.05", 41.05);
  ExpectValue("-1e3", -1000.0);
  ExpectValue("1E+2", 100.0);
}

TEST(ParseValueText, ReadsBooleans) {
  ExpectValue("true", true);
  ExpectValue("false", false);
}

TEST(ParseValueText, ReadsTextInQuotes) {
  ExpectValue("\"5\"", "5");
  ExpectValue(R"("a\"b")", "a\"b");
  ExpectValue("\"\"", "");
}

TEST(ParseValueText, ReadsData) {
  ExpectValue("<5a65 64>", Bytes("Zed"));
  ExpectValue("<>", Bytes(""));
}

TEST(ParseValueText, ReadsElementsOfXml) {
  ExpectValue("<date>2026-11-22T00:00:00Z</date>", DateOf("2026-11-22T00:00:00Z"));
  ExpectValue("<dict><key>a</key><integer>1</integer></dict>", Dict({{"a", 1}}));
}

TEST(ParseValueText, ReadsLists) {
  ExpectValue("(1, 2.5,true)", List({1, 2.5, true}));
  ExpectValue(R"(("a, \" b", <00>, c d))", List({"a, \" b", Bytes(std::string(1, '\0')), "c d"}));
  ExpectValue("()", List({}));
  ExpectValue("( )", List({}));
}

TEST(ParseValueText, ReadsEverythingElseAsItself) {
  for (const char* text : {"5x", "0x", "-", "1.2.3", "1e", "1e+", ".", "nan", "inf", "a\\b",
                           "a \"b", "(1", "1)", "True", "e5", "{a = b;}"}) {
    ExpectValue(text, text);
  }
}

TEST(ParseValueText, RefusesWhatBeginsLikeAValueAndIsNone) {
  for (const char* text : {"18446744073709551616", "1e999", "<5a6>", "<foo>", "<dict>", "\"a",
                           "(1,, 2)", "(1,)", "(,)", "((1))", "(<5>)", "(99999999999999999999)"}) {
    EXPECT_NE(ErrorOfText(text), "is a value") << text;
  }
  EXPECT_EQ(ErrorOfText("\"a\" = b;"), "\"a\" = b;: there is more after the text in quotes");
  EXPECT_EQ(ErrorOfText("((1))"), "a list in a list can only be written in XML");
  EXPECT_EQ(ErrorOfText("(1,)"), "an element of the list is missing");
}

TEST(ParseValueText, RefusesWhatNoPropertyListCanContain) {
  EXPECT_NE(ErrorOfText("\xFF"), "is a value");
  EXPECT_NE(ErrorOfText("a\x01"), "is a value");
}

TEST(TextFault, IsThereWhereAPropertyListCannotContainTheText) {
  EXPECT_FALSE(TextFault("a \"b\" \\ \u00E9"));
  EXPECT_TRUE(TextFault("a\x01"));
  EXPECT_TRUE(TextFault("\xFF"));
}

}  // namespace
}  // namespace fernwick::lab
