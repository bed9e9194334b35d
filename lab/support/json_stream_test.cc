#include "lab/support/json_stream.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

// Adds a value, with every array and object in it begun and ended.
void Spread(const Json& value, JsonStream& stream) {
  const auto add = [&](const std::string& key, const Json& member) {
    if (!member.is_structured()) return stream.AddMembers({{key, member}});
    stream.Begin(key, member.is_array() ? '[' : '{');
    Spread(member, stream);
    stream.End();
  };
  const auto addElement = [&](const Json& element) {
    if (!element.is_structured()) return stream.Add(element);
    stream.Begin(element.is_array() ? '[' : '{');
    Spread(element, stream);
    stream.End();
  };
  if (value.is_array()) {
    for (const auto& element : value) addElement(element);
  } else {
    for (const auto& [key, member] : value.items()) add(key, member);
  }
}

TEST(JsonStream, PrintsAsWhatIsPrintedWhole) {
  const char* const documents[] = {
      "{}",
      "[]",
      R"([1, "a", null])",
      R"({"a": {}, "b": [], "c": [[], {}, [[1]]], "d": {"e": {"f": [2, {"g": 3}]}}, "": true})",
      R"({"a\n\u001b\"": "\u007f\n", "b": "\u009f"})",
  };
  for (const auto* document : documents) {
    const auto json = Json::parse(document);
    std::string text;
    JsonStream stream([&](std::string_view piece) { text += piece; });
    stream.Begin(json.is_array() ? '[' : '{');
    Spread(json, stream);
    stream.End();
    EXPECT_EQ(text, PrintJson(json));
  }
}

TEST(JsonStream, AddsValuesWithTheirOwnStructure) {
  const auto json = Json::parse(R"({"a": {"b": [1, {"c": 2}]}, "d": [{"e": []}, [3, 4]]})");
  std::string text;
  JsonStream stream([&](std::string_view piece) { text += piece; });
  stream.Begin('{');
  stream.AddMembers({{"a", json["a"]}});
  stream.Begin("d", '[');
  for (const auto& element : json["d"]) stream.Add(element);
  stream.End();
  stream.End();
  EXPECT_EQ(text, PrintJson(json));
}

}  // namespace
}  // namespace fernwick::lab
