#include "value/binary_property_list_writer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/binary_property_list_builder.h"
#include "testing/corruption.h"
#include "testing/property_values.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

using testing::ArrayObject;
using testing::AsciiObject;
using testing::BinaryFile;
using testing::DictionaryObject;
using testing::Repeated;
using testing::Utf16Object;

void ExpectReadsBack(const PropertyValue& value) {
  const auto reading = ReadPropertyList(WriteBinaryPropertyList(value));
  EXPECT_EQ(reading.error, "");
  EXPECT_EQ(reading.serialisation, Serialisation::Binary);
  EXPECT_EQ(reading.value, value);
}

TEST(BinaryWriter, WritesObjectsInTheOrderInWhichTheyAreReached) {
  EXPECT_EQ(WriteBinaryPropertyList(Dictionary{{"a", Array{true, false}}, {"b", "c"}}),
            BinaryFile({DictionaryObject({1, 2}, {3, 6}), AsciiObject("a"), AsciiObject("b"),
                        ArrayObject({4, 5}), "\x09", "\x08", AsciiObject("c")},
                       {.offsetWidth = 1}));
}

TEST(BinaryWriter, SharesEqualStrings) {
  EXPECT_EQ(WriteBinaryPropertyList(Array{"x", Dictionary{{"x", "x"}}}),
            BinaryFile({ArrayObject({1, 2}), AsciiObject("x"), DictionaryObject({1}, {1})},
                       {.offsetWidth = 1}));
}

TEST(BinaryWriter, WritesTextThatIsNotAsciiInUtf16) {
  EXPECT_EQ(WriteBinaryPropertyList("\xC3\xA4\xF0\x9F\x98\x80\xEF\xBF\xBD"),
            BinaryFile({Utf16Object(u"\u00E4\U0001F600\uFFFD")}, {.offsetWidth = 1}));
}

TEST(BinaryWriter, WritesEveryIntegerInTheFewestBytes) {
  const auto object = [](const PropertyValue& value) {
    const auto file = WriteBinaryPropertyList(value);
    return file.substr(8, file.size() - 8 - 1 - 32);
  };
  using testing::BigEndian;
  EXPECT_EQ(object(0), "\x10" + BigEndian(0, 1));
  EXPECT_EQ(object(255), "\x10" + BigEndian(255, 1));
  EXPECT_EQ(object(256), "\x11" + BigEndian(256, 2));
  EXPECT_EQ(object(65535), "\x11" + BigEndian(65535, 2));
  EXPECT_EQ(object(65536), "\x12" + BigEndian(65536, 4));
  EXPECT_EQ(object(0xFFFFFFFF), "\x12" + BigEndian(0xFFFFFFFF, 4));
  EXPECT_EQ(object(0x100000000), "\x13" + BigEndian(0x100000000, 8));
  EXPECT_EQ(object(std::numeric_limits<std::int64_t>::max()),
            "\x13" + BigEndian(0x7FFFFFFFFFFFFFFF, 8));
  EXPECT_EQ(object(std::uint64_t{1} << 63),
            "\x14" + BigEndian(0, 8) + BigEndian(std::uint64_t{1} << 63, 8));
  EXPECT_EQ(object(-1), "\x13" + BigEndian(~std::uint64_t{0}, 8));
}

TEST(BinaryWriter, ReadsBackEveryKindOfValue) {
  ExpectReadsBack(Dictionary{});
  ExpectReadsBack(Array{});
  ExpectReadsBack("");
  ExpectReadsBack(testing::Bytes(""));
  ExpectReadsBack(testing::Bytes(std::string("\0\xFF", 2)));
  ExpectReadsBack(std::numeric_limits<std::int64_t>::min());
  ExpectReadsBack(std::numeric_limits<std::uint64_t>::max());
  ExpectReadsBack(-0.5);
  ExpectReadsBack(std::numeric_limits<double>::infinity());
  ExpectReadsBack(Date{-62135596800});
  ExpectReadsBack(Date{253402300799});
}

TEST(BinaryWriter, ReadsBackCountsAroundEveryWidth) {
  for (const std::size_t count : {1u, 14u, 15u, 255u, 256u, 257u, 65535u, 65536u, 65537u}) {
    ExpectReadsBack(Repeated("s", count));
    ExpectReadsBack(Repeated("\xC3\xA4", count));
    ExpectReadsBack(testing::Bytes(Repeated("d", count)));
    ExpectReadsBack(Array(count, 7));
  }
}

TEST(BinaryWriter, ReadsBackDictionariesOfManyKeys) {
  for (const std::size_t count : {14u, 15u, 127u, 128u, 40000u}) {
    std::vector<DictionaryEntry> entries;
    for (std::size_t i = 0; i < count; ++i) entries.emplace_back(std::to_string(i), i);
    ExpectReadsBack(Dictionary(std::move(entries)));
  }
}

TEST(BinaryWriter, ReadsBackWhatIsNestedAsDeepAsMayBe) {
  ExpectReadsBack(testing::NestedArrays(512, 1));
}

}  // namespace
}  // namespace fernwick
