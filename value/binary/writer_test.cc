#include "value/binary/writer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"
#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

using testing::ArrayObject;
using testing::AsciiObject;
using testing::BigEndian;
using testing::BinaryFile;
using testing::Bytes;
using testing::Copies;
using testing::DataObject;
using testing::DateObject;
using testing::DateOf;
using testing::Dict;
using testing::DictionaryObject;
using testing::ErrorOf;
using testing::Kept;
using testing::List;
using testing::RealObject;
using testing::References;
using testing::Repeated;
using testing::Utf16Object;

void ExpectReadsBack(const PropertyValue& value) {
  const auto reading = ReadPropertyList(WriteBinaryPropertyList(value));
  EXPECT_EQ(reading.serialisation, Serialisation::Binary);
  ASSERT_EQ(ErrorOf(reading.list), "");
  EXPECT_EQ(reading.list->value, value);
}

TEST(BinaryWriter, WritesObjectsInTheOrderInWhichTheyAreReached) {
  EXPECT_EQ(WriteBinaryPropertyList(Dict({{"a", List({true, false})}, {"b", "c"}})),
            BinaryFile({DictionaryObject({1, 2}, {3, 6}), AsciiObject("a"), AsciiObject("b"),
                        ArrayObject({4, 5}), "\x09", "\x08", AsciiObject("c")},
                       {.offsetWidth = 1}));
}

TEST(BinaryWriter, SharesEqualStrings) {
  EXPECT_EQ(WriteBinaryPropertyList(List({"x", Dict({{"x", "x"}})})),
            BinaryFile({ArrayObject({1, 2}), AsciiObject("x"), DictionaryObject({1}, {1})},
                       {.offsetWidth = 1}));
}

// The file of one object.
std::string FileOf(const std::string& object) {
  return BinaryFile({object}, {.offsetWidth = 1});
}

struct LeafRow {
  PropertyValue value;
  std::string object;
};

TEST(BinaryWriter, EncodesEveryLeafInTheFewestBytes) {
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
      {Kept(Repeated("s", 14)), AsciiObject(Repeated("s", 14))},
      {Kept(Repeated("s", 15)), AsciiObject(Repeated("s", 15))},
      {"a\u00E9\uFFFD\U0001F600", Utf16Object(u"a\u00E9\uFFFD\U0001F600")},
      {"\uFFFF\U00010000\U00010001", Utf16Object(u"\uFFFF\U00010000\U00010001")},
      {"\U000103FF\U00010400\U0010FFFF", Utf16Object(u"\U000103FF\U00010400\U0010FFFF")},
      {Bytes("\x80"), DataObject("\x80")},
      {DateOf("2001-01-01T00:00:00Z"), DateObject(0)},
      {DateOf("2000-12-31T23:59:59Z"), DateObject(-1)},
  };
  for (const auto& [value, object] : rows) {
    SCOPED_TRACE(::testing::PrintToString(value));
    EXPECT_EQ(WriteBinaryPropertyList(value), FileOf(object));
  }
}

TEST(BinaryWriter, ReferencesAreWiderFromTheTwoHundredAndFiftySeventhObjectOn) {
  References elements;
  std::vector<std::string> objects{""};
  for (std::uint64_t i = 1; i <= 256; ++i) {
    elements.push_back(i);
    objects.emplace_back("\x09");
  }
  objects[0] = ArrayObject(elements, 2);
  EXPECT_EQ(WriteBinaryPropertyList(Copies(256, true)),
            BinaryFile(objects, {.offsetWidth = 2, .referenceWidth = 2}));
  elements.pop_back();
  objects.pop_back();
  objects[0] = ArrayObject(elements, 1);
  EXPECT_EQ(WriteBinaryPropertyList(Copies(255, true)), BinaryFile(objects, {.offsetWidth = 2}));
}

TEST(BinaryWriter, ReadsBackEveryKindOfValue) {
  ExpectReadsBack(Dictionary());
  ExpectReadsBack(Array());
  ExpectReadsBack("");
  ExpectReadsBack(Bytes(""));
  ExpectReadsBack(Bytes(std::string("\0\xFF", 2)));
  ExpectReadsBack(std::numeric_limits<std::int64_t>::min());
  ExpectReadsBack(std::numeric_limits<std::uint64_t>::max());
  ExpectReadsBack(-0.5);
  ExpectReadsBack(std::numeric_limits<double>::infinity());
  ExpectReadsBack(Date{-62135596800});
  ExpectReadsBack(Date{253402300799});
}

TEST(BinaryWriter, ReadsBackCountsAroundEveryWidth) {
  for (const std::size_t count : {1u, 14u, 15u, 255u, 256u, 257u, 65535u, 65536u, 65537u}) {
    ExpectReadsBack(Kept(Repeated("s", count)));
    ExpectReadsBack(Kept(Repeated("\xC3\xA4", count)));
    ExpectReadsBack(Bytes(Repeated("d", count)));
    ExpectReadsBack(Copies(count, 7));
  }
}

TEST(BinaryWriter, ReadsBackDictionariesOfManyKeys) {
  for (const std::size_t count : {14u, 15u, 127u, 128u, 40000u}) {
    std::vector<DictionaryEntry> entries;
    for (std::size_t i = 0; i < count; ++i) entries.push_back({Kept(std::to_string(i)), i});
    ExpectReadsBack(Dictionary(entries));
  }
}

TEST(BinaryWriter, ReadsBackWhatIsNestedToTheLimit) {
  ExpectReadsBack(testing::NestedArrays(512, 1));
}

}  // namespace
}  // namespace fernwick
