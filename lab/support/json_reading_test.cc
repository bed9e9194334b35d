#include "lab/support/json_reading.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

std::string Nested(std::size_t depth, const std::string& begin, const std::string& end) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += begin;
  text += "1";
  for (std::size_t i = 0; i < depth; ++i) text += end;
  return text;
}

TEST(ParseJson, ReadsAsTheLibraryDoes) {
  for (const auto* text : {"null", "true", "-1", "18446744073709551615", "2.5", "\"x\\ty\"", "[]",
                           "{}", R"({"a":[1,{"b":null}],"c":{"d":-1.5},"e":"f"})"}) {
    EXPECT_EQ(*ParseJson(text), Json::parse(text)) << text;
  }
}

TEST(ParseJson, RefusesWhatIsMalformed) {
  for (const auto* text : {"", "{", "[1,]", "{\"a\":1}x", "nul", "\"\xFF\"", "{\"a\" 1}"}) {
    EXPECT_FALSE(ParseJson(text)) << text;
  }
}

TEST(ParseJson, OfAKeyThatOccursTwiceKeepsThePositionAndTheLastValue) {
  EXPECT_EQ(PrintJsonRow(*ParseJson(R"({"a":1,"b":2,"a":{"c":3}})")),
            "{\"a\":{\"c\":3},\"b\":2}\n");
}

TEST(ParseJson, HasALimitOfDepth) {
  EXPECT_TRUE(ParseJson(Nested(1024, "[", "]")));
  EXPECT_FALSE(ParseJson(Nested(1025, "[", "]")));
  EXPECT_TRUE(ParseJson(Nested(1024, "{\"a\":", "}")));
  EXPECT_FALSE(ParseJson(Nested(1025, "{\"a\":", "}")));
  EXPECT_FALSE(ParseJson(Nested(66'000, "[", "]")));
  EXPECT_TRUE(ParseJson("\"" + std::string(66'000, '[') + "\""));
}

TEST(ParseJson, ReportsTheLocationOfAFault) {
  const auto errorOf = [](std::string_view json) { return Describe(ParseJson(json).Error()); };
  EXPECT_EQ(errorOf(""), "line 1, column 1: this is not JSON");
  EXPECT_EQ(errorOf("{\n  \"a\": x}"), "line 2, column 8: this is not JSON");
  EXPECT_EQ(errorOf("\"\xFF\""), "line 1, column 2: this is not JSON");
  EXPECT_EQ(errorOf("[1e999]"), "a number is out of range");
  EXPECT_EQ(errorOf(Nested(1025, "[", "]")), "arrays and objects are nested too deeply");
}

TEST(ReadJsonFile, HasTheStatusOfItsFault) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(*ReadJsonFile(directory.Write("a.json", "[]")), Json::array());
  EXPECT_EQ(ReadJsonFile(directory.Write("b.json", "[")).Error().status, LabStatus::MalformedInput);
  EXPECT_EQ(ReadJsonFile(directory.Path()).Error().status, LabStatus::UnreadableInput);
}

TEST(MemberOf, IsNullWhereThereIsNone) {
  EXPECT_EQ(MemberOf(Json{{"a", 1}}, "a"), 1);
  EXPECT_TRUE(MemberOf(Json{{"a", 1}}, "b").is_null());
  EXPECT_TRUE(MemberOf(Json::array({"a"}), "a").is_null());
  EXPECT_TRUE(MemberOf(Json(nullptr), "a").is_null());
}

TEST(StringsOf, IsEmptyForAnythingButAnArrayOfStrings) {
  EXPECT_EQ(StringsOf(Json::array({"a", "b"})), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(StringsOf(Json::array()), std::vector<std::string>());
  EXPECT_EQ(StringsOf(Json::array({"a", 1})), std::nullopt);
  EXPECT_EQ(StringsOf("a"), std::nullopt);
  EXPECT_EQ(StringsOf(nullptr), std::nullopt);
}

}  // namespace
}  // namespace fernwick::lab
