#include "lab/support/json_reading.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

std::string Nested(std::size_t depth, const std::string& begin, const std::string& end) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += begin;
  text += "1";
  for (std::size_t i = 0; i < depth; ++i) text += end;
  return text;
}

TEST(ParseOrderedJson, ReadsAsTheLibraryDoes) {
  for (const auto* text : {"null", "true", "-1", "18446744073709551615", "2.5", "\"x\\ty\"", "[]",
                           "{}", R"({"a":[1,{"b":null}],"c":{"d":-1.5},"e":"f"})"}) {
    EXPECT_EQ(ParseOrderedJson(text), std::optional(Json::parse(text))) << text;
  }
}

TEST(ParseOrderedJson, RefusesWhatIsMalformed) {
  for (const auto* text : {"", "{", "[1,]", "{\"a\":1}x", "nul", "\"\xFF\"", "{\"a\" 1}"}) {
    EXPECT_FALSE(ParseOrderedJson(text)) << text;
  }
}

TEST(ParseOrderedJson, OfAKeyThatOccursTwiceKeepsThePositionAndTheLastValue) {
  EXPECT_EQ(PrintJsonRow(ParseOrderedJson(R"({"a":1,"b":2,"a":{"c":3}})").value()),
            "{\"a\":{\"c\":3},\"b\":2}\n");
}

TEST(ParseOrderedJson, HasALimitOfDepth) {
  EXPECT_TRUE(ParseOrderedJson(Nested(1024, "[", "]")));
  EXPECT_FALSE(ParseOrderedJson(Nested(1025, "[", "]")));
  EXPECT_TRUE(ParseOrderedJson(Nested(1024, "{\"a\":", "}")));
  EXPECT_FALSE(ParseOrderedJson(Nested(1025, "{\"a\":", "}")));
  EXPECT_FALSE(ParseOrderedJson(Nested(66'000, "[", "]")));
  EXPECT_TRUE(ParseOrderedJson("\"" + std::string(66'000, '[') + "\""));
}

}  // namespace
}  // namespace fernwick::lab
