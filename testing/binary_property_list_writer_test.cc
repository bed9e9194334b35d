#include "testing/binary_property_list_writer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "testing/binary_property_list_builder.h"
#include "testing/corruption.h"
#include "testing/property_values.h"
#include "value/property_list_reader.h"

namespace fernwick::testing {
namespace {

/// The file of one object.
std::string FileOf(const std::string& object) {
  return BinaryFile({object}, {.offsetWidth = 1});
}

struct LeafRow {
  PropertyValue value;
  std::string object;
};

TEST(BinaryPropertyListWriter, SpellsEveryLeafAsShortAsMayBe) {
  const LeafRow rows[] = {
      {false, "\x08"},
      {true, "\x09"},
      {0, std::string("\x10\0", 2)},
      {255, "\x10\xFF"},
      {256, std::string("\x11\1\0", 3)},
      {0xFFFF, "\x11\xFF\xFF"},
      {0x10000, std::string("\x12\0\1\0\0", 5)},
      {0xFFFFFFFFu, "\x12\xFF\xFF\xFF\xFF"},
      {0x100000000u, std::string("\x13\0\0\0\1\0\0\0\0", 9)},
      {std::numeric_limits<std::int64_t>::max(), "\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
      {-1, "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
      {std::uint64_t{1} << 63, '\x14' + BigEndian(0, 8) + '\x80' + BigEndian(0, 7)},
      {0.5, RealObject(0.5)},
      {"", AsciiObject("")},
      {"a\x7F", AsciiObject("a\x7F")},
      {"a\u00E9\uFFFD\U0001F600", Utf16Object(u"a\u00E9\uFFFD\U0001F600")},
      {Bytes("\x80"), DataObject("\x80")},
      {DateOf("2001-01-01T00:00:00Z"), DateObject(0)},
      {DateOf("2000-12-31T23:59:59Z"), DateObject(-1)},
  };
  for (const auto& [value, object] : rows) {
    SCOPED_TRACE(::testing::PrintToString(value));
    EXPECT_EQ(WriteBinaryPropertyList(value), FileOf(object));
  }
}

TEST(BinaryPropertyListWriter, NumbersObjectsAsTheyAreReached) {
  const Dictionary value{{"a", Array{true, Array{}}}, {"b", "a"}};
  EXPECT_EQ(WriteBinaryPropertyList(value),
            BinaryFile({DictionaryObject({1, 5}, {2, 6}), AsciiObject("a"), ArrayObject({3, 4}),
                        "\x09", ArrayObject({}), AsciiObject("b"), AsciiObject("a")},
                       {.offsetWidth = 1}));
}

TEST(BinaryPropertyListWriter, TakesWiderReferencesFromTheTwoHundredAndFiftySeventhObjectOn) {
  References elements;
  std::vector<std::string> objects{""};
  Array array;
  for (std::uint64_t i = 1; i <= 256; ++i) {
    elements.push_back(i);
    objects.push_back("\x09");
    array.push_back(true);
  }
  objects[0] = ArrayObject(elements, 2);
  EXPECT_EQ(WriteBinaryPropertyList(array),
            BinaryFile(objects, {.offsetWidth = 2, .referenceWidth = 2}));
  elements.pop_back();
  objects.pop_back();
  array.pop_back();
  objects[0] = ArrayObject(elements, 1);
  EXPECT_EQ(WriteBinaryPropertyList(array), BinaryFile(objects, {.offsetWidth = 2}));
}

TEST(BinaryPropertyListWriter, WritesWhatTheReaderReadsBack) {
  const Dictionary value{
      {"Leaves", Array{1, 0.5, "text", Bytes("data"), DateOf("2026-11-20T00:00:00Z"), true}},
      {"Long", Array{Repeated("x", 70000), NestedArrays(500, "innermost")}},
      {"\u00E9", Dictionary{}},
  };
  const auto reading = ReadPropertyList(WriteBinaryPropertyList(value));
  EXPECT_EQ(reading.error, "");
  EXPECT_EQ(reading.value, value);
  EXPECT_EQ(reading.serialisation, Serialisation::Binary);
}

}  // namespace
}  // namespace fernwick::testing
