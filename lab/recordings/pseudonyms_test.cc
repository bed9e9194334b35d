#include "lab/recordings/pseudonyms.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>

#include "testing/property_values.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::List;

// The pseudonym, in memory that stays.
PropertyValue Of(Pseudonyms& pseudonyms, const PropertyValue& value) {
  return pseudonyms.Of(value, testing::ValueArena());
}

TEST(Pseudonyms, OfTextsAreCountedInTheirShape) {
  Pseudonyms pseudonyms;
  EXPECT_EQ(Of(pseudonyms, "5F1C-9a04"), PropertyValue("0000-0001"));
  EXPECT_EQ(Of(pseudonyms, "5F1C-9a05"), PropertyValue("0000-0002"));
  EXPECT_EQ(Of(pseudonyms, "caf\u00E9 x"), PropertyValue("0000 3"));
}

TEST(Pseudonyms, OfEqualValuesAreEqual) {
  Pseudonyms pseudonyms;
  for (const PropertyValue& value : List({"one", Bytes("one"), 1443, 0.25})) {
    EXPECT_EQ(Of(pseudonyms, value), Of(pseudonyms, value));
    EXPECT_TRUE(MayIdentify(value));
    EXPECT_TRUE(MayIdentify(Dict({{"k", List({"", value})}})));
  }
  EXPECT_EQ(Of(pseudonyms, 5), PropertyValue((3 << 4) + 5));
  EXPECT_EQ(Of(pseudonyms, 5.0), PropertyValue(53.0));
  EXPECT_EQ(Of(pseudonyms, std::uint64_t{1} << 63), PropertyValue(4 << 4));
  EXPECT_EQ(Of(pseudonyms, 0x1p63), PropertyValue(64.0));
  EXPECT_EQ(Of(pseudonyms, std::numeric_limits<std::int64_t>::min()), PropertyValue(5 << 4));
  EXPECT_EQ(Of(pseudonyms, -0x1p63), PropertyValue(80.0));
}

TEST(Pseudonyms, OfDifferentValuesDifferAlsoWhereTheShapeIsTooSmall) {
  Pseudonyms pseudonyms;
  std::set<std::string> texts;
  for (char32_t c = 0x400; c < 0x400 + 300; ++c) {
    std::string text;
    AppendUtf8(text, c);
    texts.insert(pseudonyms.OfText(text));
    texts.insert(pseudonyms.OfText("-" + text));
    texts.insert(pseudonyms.OfText(text + text));
  }
  EXPECT_EQ(texts.size(), 900u);
  EXPECT_TRUE(texts.contains("1"));
  EXPECT_TRUE(texts.contains("89-9"));
}

TEST(Pseudonyms, OfBytesHaveTheirLengthOrAreLonger) {
  Pseudonyms pseudonyms;
  EXPECT_EQ(Of(pseudonyms, Bytes("abc")), Bytes(std::string("\0\0\x01", 3)));
  for (int i = 0; i < 254; ++i) Of(pseudonyms, i == 0 ? Bytes("x") : Bytes(std::to_string(i)));
  EXPECT_EQ(Of(pseudonyms, Bytes("y")), Bytes(std::string("\x01\x00", 2)));
}

TEST(Pseudonyms, OfNumbersKeepTheLowFourBitsAndTheKind) {
  Pseudonyms pseudonyms;
  EXPECT_EQ(Of(pseudonyms, 0x5A3), PropertyValue(0x13));
  EXPECT_EQ(Of(pseudonyms, std::numeric_limits<std::uint64_t>::max()), PropertyValue(0x2F));
  EXPECT_EQ(Of(pseudonyms, -1), PropertyValue(0x3F));
  EXPECT_EQ(Of(pseudonyms, 7.75), PropertyValue(71.0));
  EXPECT_EQ(Of(pseudonyms, 1e300), PropertyValue(95.0));
}

TEST(Pseudonyms, LeaveWhatIdentifiesNothing) {
  Pseudonyms pseudonyms;
  const auto infinity = std::numeric_limits<double>::infinity();
  for (const PropertyValue& value :
       List({"", Bytes(""), true, false, Date{5}, infinity, List({})})) {
    EXPECT_EQ(Of(pseudonyms, value), value);
    EXPECT_FALSE(MayIdentify(value));
    EXPECT_FALSE(MayIdentify(List({value, Dict({{"k", value}})})));
  }
  EXPECT_EQ(Of(pseudonyms, "a"), PropertyValue("1"));
}

TEST(Pseudonyms, ReplaceEverythingInsideAContainer) {
  Pseudonyms pseudonyms;
  EXPECT_EQ(Of(pseudonyms, Dict({{"key", List({"ab", "cd"})}, {"other", Dict({{"k", 1}})}})),
            PropertyValue(Dict({{"key", List({"01", "02"})}, {"other", Dict({{"k", 17}})}})));
}

}  // namespace
}  // namespace fernwick::lab
