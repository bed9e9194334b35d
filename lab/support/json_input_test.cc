#include "lab/support/json_input.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

std::string Nested(std::size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

TEST(ParseJson, ReadsADocument) {
  EXPECT_EQ((*ParseJson(R"({"b": [1, "]"], "a": null})")).dump(), R"({"a":null,"b":[1,"]"]})");
}

TEST(ParseJson, ReportsTheLocationOfAFault) {
  const auto errorOf = [](std::string_view json) { return Describe(ParseJson(json).Error()); };
  EXPECT_EQ(errorOf(""), "line 1, column 1: this is no JSON");
  EXPECT_EQ(errorOf("{\n  \"a\": x}"), "line 2, column 8: this is no JSON");
  EXPECT_EQ(errorOf("\"\xFF\""), "line 1, column 2: this is no JSON");
  EXPECT_EQ(errorOf("[1e999]"), "a number is out of range");
}

TEST(ParseJson, RefusesWhatIsNestedTooDeeply) {
  EXPECT_TRUE(ParseJson(Nested(1024)));
  EXPECT_EQ(ParseJson(Nested(1025)).Error(), Error{"arrays and objects are nested too deeply"});
}

TEST(IsTooDeep, CountsOpenArraysAndObjectsOutsideOfTexts) {
  EXPECT_FALSE(IsTooDeep("\"" + std::string(2000, '[') + "\""));
  EXPECT_FALSE(IsTooDeep("\"\\\"" + std::string(2000, '{') + "\""));
  EXPECT_TRUE(IsTooDeep("\"\\\\\"" + std::string(1025, '{')));
  EXPECT_FALSE(IsTooDeep(Nested(600) + Nested(600)));
  EXPECT_FALSE(IsTooDeep("]}" + Nested(1024)));
}

TEST(ReadJsonFile, HasTheStatusOfItsFault) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(*ReadJsonFile(directory.Write("a.json", "[]")), SortedJson::array());
  EXPECT_EQ(ReadJsonFile(directory.Write("b.json", "[")).Error().status, LabStatus::MalformedInput);
  EXPECT_EQ(ReadJsonFile(directory.Path()).Error().status, LabStatus::UnreadableInput);
}

}  // namespace
}  // namespace fernwick::lab
