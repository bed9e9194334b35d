#include "value/xml/writer.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::DateOf;
using testing::Dict;
using testing::List;
using testing::NestedArrays;

// The whole output for a value whose own lines are `lines`.
std::string Framed(const std::string& lines) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" + lines +
         "\n</plist>";
}

struct WrittenRow {
  PropertyValue value;
  std::string lines;
};

const WrittenRow WrittenRows[] = {
    {"text", "<string>text</string>"},
    {"", "<string></string>"},
    {0, "<integer>0</integer>"},
    {-5, "<integer>-5</integer>"},
    {std::numeric_limits<std::int64_t>::min(), "<integer>-9223372036854775808</integer>"},
    {std::numeric_limits<std::uint64_t>::max(), "<integer>18446744073709551615</integer>"},
    {3.0, "<real>3</real>"},
    {1e5, "<real>1e+05</real>"},
    {-0.0, "<real>-0</real>"},
    {41.050000000999994, "<real>41.050000000999994</real>"},
    {std::numeric_limits<double>::infinity(), "<real>inf</real>"},
    {-std::numeric_limits<double>::infinity(), "<real>-inf</real>"},
    {true, "<true/>"},
    {false, "<false/>"},
    {Bytes(""), "<data></data>"},
    {Bytes("foob"), "<data>Zm9vYg==</data>"},
    {Bytes(std::string(90, '\0')), "<data>" + std::string(120, 'A') + "</data>"},
    {DateOf("2026-11-20T00:00:00Z"), "<date>2026-11-20T00:00:00Z</date>"},
    {DateOf("0001-01-01T00:00:00Z"), "<date>0001-01-01T00:00:00Z</date>"},
    {Array(), "<array/>"},
    {Dictionary(), "<dict/>"},
    {List({1, "a"}), "<array>\n\t<integer>1</integer>\n\t<string>a</string>\n</array>"},
    {List({Array(), Dictionary()}), "<array>\n\t<array/>\n\t<dict/>\n</array>"},
    {Dict({{"b", 1}, {"a", 2}}),
     "<dict>\n\t<key>b</key>\n\t<integer>1</integer>\n\t<key>a</key>\n\t<integer>2</integer>\n"
     "</dict>"},
    {Dict({{"", List({Dict({{"a", true}})})}}),
     "<dict>\n\t<key></key>\n\t<array>\n\t\t<dict>\n\t\t\t<key>a</key>\n\t\t\t<true/>\n\t\t</"
     "dict>\n"
     "\t</array>\n</dict>"},
    // What would be markup, or read as something else, is escaped.
    {"<a> & \"b\" 'c'", "<string>&lt;a&gt; &amp; \"b\" 'c'</string>"},
    {"]]>", "<string>]]&gt;</string>"},
    {"&amp;", "<string>&amp;amp;</string>"},
    {"a\rb\r\nc", "<string>a&#13;b&#13;\nc</string>"},
    {" \n\t ", "<string> \n\t </string>"},
    {"\x7F\xC2\x85\xC3\xA4\xF0\x9F\x98\x80",
     "<string>\x7F\xC2\x85\xC3\xA4\xF0\x9F\x98\x80</string>"},
    {Dict({{"<&>\r", true}}), "<dict>\n\t<key>&lt;&amp;&gt;&#13;</key>\n\t<true/>\n</dict>"},
};

TEST(PropertyListWriter, WritesOneElementALine) {
  for (const auto& [value, lines] : WrittenRows) {
    EXPECT_EQ(WriteXmlPropertyList(value), Framed(lines));
  }
}

TEST(PropertyListWriter, WhatItWritesReadsBackEqual) {
  for (const auto& [value, lines] : WrittenRows) {
    SCOPED_TRACE(lines);
    const auto reading = ReadPropertyList(WriteXmlPropertyList(value));
    EXPECT_EQ(reading.serialisation, Serialisation::Xml);
    ASSERT_EQ(testing::ErrorOf(reading.list), "");
    EXPECT_EQ(reading.list->value, value);
  }
}

TEST(PropertyListWriter, DeepestValueReadsBackEqual) {
  const auto value = NestedArrays(512, true);
  const auto reading = ReadPropertyList(WriteXmlPropertyList(value));
  ASSERT_EQ(testing::ErrorOf(reading.list), "");
  EXPECT_EQ(reading.list->value, value);
}

TEST(PropertyListWriter, WritesNanWithItsSign) {
  constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(WriteXmlPropertyList(Nan), Framed("<real>nan</real>"));
  EXPECT_EQ(WriteXmlPropertyList(-Nan), Framed("<real>-nan</real>"));
}

struct ReplacedRow {
  std::string text;
  std::string written;
};

TEST(PropertyListWriter, ReplacesWhatXmlCannotCarry) {
  const std::string replacement = "\xEF\xBF\xBD";
  const ReplacedRow rows[] = {
      {{"a\0b", 3}, "a" + replacement + "b"},
      {"\x01\x08\x0B\x0C\x0E\x1F",
       replacement + replacement + replacement + replacement + replacement + replacement},
      {"\xEF\xBF\xBE", replacement},
      {"\xEF\xBF\xBF", replacement},
      {"a\x80z", "a" + replacement + "z"},
      {"\xFF", replacement},
      {"\xC3", replacement},
      {"\xC0\x80", replacement + replacement},
      {"\xED\xA0\x80", replacement + replacement + replacement},
      {replacement, replacement},
  };
  for (const auto& [text, written] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text));
    EXPECT_EQ(WriteXmlPropertyList(text), Framed("<string>" + written + "</string>"));
    EXPECT_EQ(WriteXmlPropertyList(Dict({{text, true}})),
              Framed("<dict>\n\t<key>" + written + "</key>\n\t<true/>\n</dict>"));
  }
}

TEST(PropertyListWriter, PassesOnPartsOfWholeLines) {
  std::vector<PropertyValue> texts(100, PropertyValue(testing::Kept(std::string(1000, 'x'))));
  const PropertyValue value = Array(std::span<const PropertyValue>(texts));
  std::vector<std::string> parts;
  WriteXmlPropertyList(value, 32, [&](std::string_view part) { parts.emplace_back(part); });
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_TRUE(parts[0].ends_with("\n"));
  EXPECT_EQ(parts[0] + parts[1], WriteXmlPropertyList(value));
}

TEST(PropertyListWriter, IndentsAtMostAsAsked) {
  std::string text;
  WriteXmlPropertyList(NestedArrays(2, Array()), 1, [&](std::string_view part) { text += part; });
  EXPECT_NE(text.find("\n<array>\n\t<array>\n\t<array/>\n\t</array>\n</array>\n"),
            std::string::npos)
      << text;
}

}  // namespace
}  // namespace fernwick
