#include "value/property_list_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"
#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"
#include "value/binary/writer.h"

namespace fernwick {
namespace {

using testing::ArrayObject;
using testing::BinaryFile;
using testing::Dict;
using testing::ErrorOf;
using testing::List;
using testing::NestedArrays;
using testing::Repeated;

const std::string Utf8Mark = "\xEF\xBB\xBF";

// ASCII as UTF-16 with a byte-order mark.
std::string AsUtf16(const std::string& ascii, bool bigEndian) {
  std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : ascii) {
    bytes += bigEndian ? std::string(1, '\0') + c : c + std::string(1, '\0');
  }
  return bytes;
}

struct ReadRow {
  std::string bytes;
  PropertyValue value;
  Serialisation serialisation;
};

TEST(PropertyListReader, CodesOfTheSerialisations) {
  EXPECT_EQ(static_cast<unsigned long>(Serialisation::None), 0u);
  EXPECT_EQ(static_cast<unsigned long>(Serialisation::Text), 1u);
  EXPECT_EQ(static_cast<unsigned long>(Serialisation::Xml), 100u);
  EXPECT_EQ(static_cast<unsigned long>(Serialisation::Binary), 200u);
}

TEST(PropertyListReader, DetectsTheSerialisationFromTheContentAlone) {
  const ReadRow rows[] = {
      {BinaryFile({"\x09"}), true, Serialisation::Binary},
      {"<?xml version='1.0'?><true/>", true, Serialisation::Xml},
      {"<!DOCTYPE plist><true/>", true, Serialisation::Xml},
      {"<!-- a --><true/>", true, Serialisation::Xml},
      {"<plist><true/></plist>", true, Serialisation::Xml},
      {"<plist version='1.0'><true/></plist>", true, Serialisation::Xml},
      {" \t\r\n<true/>", true, Serialisation::Xml},
      {Utf8Mark + "<true/>", true, Serialisation::Xml},
      {Utf8Mark + "\n <true/>", true, Serialisation::Xml},
      {AsUtf16("<true/>", true), true, Serialisation::Xml},
      {AsUtf16(" \n<true/>", false), true, Serialisation::Xml},
      {"<array/>", Array(), Serialisation::Xml},
      {"<array>\n</array>", Array(), Serialisation::Xml},
      {"<data>Zg==</data>", testing::Bytes("f"), Serialisation::Xml},
      {"<date>2026-11-20T00:00:00Z</date>", testing::DateOf("2026-11-20T00:00:00Z"),
       Serialisation::Xml},
      {"<dict\n/>", Dictionary(), Serialisation::Xml},
      {"<false />", false, Serialisation::Xml},
      {"<integer>1</integer>", 1, Serialisation::Xml},
      {"<real>1</real>", 1.0, Serialisation::Xml},
      {"<string\t>a</string>", "a", Serialisation::Xml},
      {"{a=b;}", Dict({{"a", "b"}}), Serialisation::Text},
      {"a=b;", Dict({{"a", "b"}}), Serialisation::Text},
      {"(a)", List({"a"}), Serialisation::Text},
      {"\"<true/>\"", "<true/>", Serialisation::Text},
      {"<>", testing::Bytes(""), Serialisation::Text},
      {"<da7a>", testing::Bytes("\xDA\x7A"), Serialisation::Text},
      {"// <true/>\n(a)", List({"a"}), Serialisation::Text},
      {"\v(a)", List({"a"}), Serialisation::Text},
      {Utf8Mark + "(a)", List({"a"}), Serialisation::Text},
      {AsUtf16("(a)", true), List({"a"}), Serialisation::Text},
      {AsUtf16("(a)", false), List({"a"}), Serialisation::Text},
      {"bplist=a;", Dict({{"bplist", "a"}}), Serialisation::Text},
  };
  for (const auto& [bytes, value, serialisation] : rows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    const auto reading = ReadPropertyList(bytes);
    EXPECT_EQ(reading.serialisation, serialisation);
    ASSERT_EQ(ErrorOf(reading.list), "");
    EXPECT_EQ(reading.list->value, value);
  }
}

struct RefusedRow {
  std::string bytes;
  std::string error;
  Serialisation serialisation;
};

TEST(PropertyListReader, FailureCarriesTheSerialisationThatWasDetected) {
  const std::string oneString = "one unquoted string is not a property list";
  const std::string noValue = "nothing but white space and comments";
  const std::string notHex = "data contains something other than hexadecimal digits";
  const RefusedRow rows[] = {
      {"", "the file is empty", Serialisation::None},
      {"bplist0", "byte 7: the version is not \"00\"", Serialisation::Binary},
      {"bplist00", "byte 8: the file is cut short", Serialisation::Binary},
      {"bplist01{a=b;}", "byte 7: the version is not \"00\"", Serialisation::Binary},
      {BinaryFile({ArrayObject({0})}), "byte 8: an object contains itself", Serialisation::Binary},
      {"<?xml", "line 1, column 6: the XML declaration is malformed", Serialisation::Xml},
      {"<?xml-a?>", "line 1, column 10: the document ends too early", Serialisation::Xml},
      {" <?xml version='1.0'?><true/>",
       "line 1, column 2: an XML declaration is allowed only at the very start",
       Serialisation::Xml},
      {"<!DOCTYPE", "line 1, column 1: the document type declaration is malformed",
       Serialisation::Xml},
      {"<!--", "line 1, column 1: a comment does not end", Serialisation::Xml},
      {"<plist", "line 1, column 1: a start tag does not end", Serialisation::Xml},
      {"<plists/>", "line 1, column 1: <plists> is no property-list element", Serialisation::Xml},
      {"<dict", "line 1, column 1: a start tag does not end", Serialisation::Xml},
      {"<key>a</key>", "line 1, column 1: <key> found where a value was expected",
       Serialisation::Xml},
      {"<string>\xFF</string>", "line 1, column 9: the text is not UTF-8", Serialisation::Xml},
      {AsUtf16("<true/>", true) + "x", "line 1, column 8: the text is not UTF-16",
       Serialisation::Xml},
      {"<dictionary/>", "line 1, column 3: " + notHex, Serialisation::Text},
      {"<Dict/>", "line 1, column 3: " + notHex, Serialisation::Text},
      {"<!doctype plist>", "line 1, column 2: " + notHex, Serialisation::Text},
      {"<?XML?>", "line 1, column 2: " + notHex, Serialisation::Text},
      {"</plist>", "line 1, column 2: " + notHex, Serialisation::Text},
      {"<", "line 1, column 1: data does not end", Serialisation::Text},
      {" bplist00", "line 1, column 2: " + oneString, Serialisation::Text},
      {Utf8Mark + "bplist00", "line 1, column 1: " + oneString, Serialisation::Text},
      {"bplist", "line 1, column 1: " + oneString, Serialisation::Text},
      {"BPLIST00", "line 1, column 1: " + oneString, Serialisation::Text},
      {"\n", "line 2, column 1: " + noValue, Serialisation::Text},
      {Utf8Mark, "line 1, column 1: " + noValue, Serialisation::Text},
      {"\xFE\xFF", "line 1, column 1: " + noValue, Serialisation::Text},
      {std::string("\0", 1), "line 1, column 1: a value was expected", Serialisation::Text},
      {"\xFF", "line 1, column 1: the text is not UTF-8", Serialisation::Text},
      {"{a=b", "line 1, column 1: a dictionary does not end", Serialisation::Text},
      {"{\n  a = b\n  c = d\n}", "line 3, column 3: \";\" was expected", Serialisation::Text},
  };
  for (const auto& [bytes, error, serialisation] : rows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    const auto reading = ReadPropertyList(bytes);
    EXPECT_EQ(ErrorOf(reading.list), error);
    EXPECT_EQ(reading.serialisation, serialisation);
  }
}

TEST(PropertyListReader, AnyTwoBytesAreRefusedOrReadWithoutHarm) {
  for (unsigned first = 0; first < 256; ++first) {
    for (unsigned second = 0; second < 256; ++second) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
      const auto reading = ReadPropertyList(bytes);
      ASSERT_NE(reading.list ? "a value" : reading.list.Error().message, "")
          << first << ' ' << second;
    }
  }
}

// Files so short that a std::string keeps their characters in itself, and longer ones, that are
// viewed, decoded and transcoded.
TEST(PropertyListReader, ValueStaysValidWhenTheListIsMoved) {
  const std::string files[] = {"(ab)",
                               "('a\\142')",
                               "(ab) // and as much more as needs memory of its own",
                               "<array><string>ab</string></array>",
                               "<array><string>&#97;b</string></array>",
                               BinaryFile({ArrayObject({1}), testing::AsciiObject("ab")}),
                               BinaryFile({ArrayObject({1}), testing::Utf16Object(u"ab")}),
                               AsUtf16("(ab)", true),
                               AsUtf16("<array><string>ab</string></array>", false)};
  for (const auto& file : files) {
    SCOPED_TRACE(::testing::PrintToString(file));
    PropertyList first;
    {
      auto reading = ReadPropertyList(file);
      ASSERT_EQ(ErrorOf(reading.list), "");
      first = *std::move(reading.list);
    }
    const PropertyList second = std::move(first);
    EXPECT_EQ(second.value, PropertyValue(List({"ab"})));
  }
}

TEST(PropertyListReader, PositionOfAnErrorIsThatInItsFile) {
  EXPECT_EQ(ReadPropertyList("(\n a b)").list.Error().location,
            (FileLocation{.line = 2, .column = 4}));
  EXPECT_EQ(ReadPropertyList("bplist00").list.Error().location, (FileLocation{.byte = 8}));
  EXPECT_EQ(ReadPropertyList("").list.Error().location, std::nullopt);
}

TEST(PropertyListReader, EverySerialisationReadsTheSameDepth) {
  const PropertyValue deepest = NestedArrays(511, Array());
  for (const auto& file :
       {Repeated("(", 512) + Repeated(")", 512),
        Repeated("<array>", 512) + Repeated("</array>", 512), WriteBinaryPropertyList(deepest)}) {
    const auto reading = ReadPropertyList(file);
    ASSERT_EQ(ErrorOf(reading.list), "");
    EXPECT_EQ(reading.list->value, deepest);
  }
}

}  // namespace
}  // namespace fernwick
