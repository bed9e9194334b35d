#include "value/value_locations.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/parse_tables.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

// Every location on a line of its own, indented: the value's offset, and before it the key with its
// own.
void Describe(const ValueLocation& location, const std::string& prefix, int depth,
              std::string& out) {
  out += std::string(static_cast<std::size_t>(depth) * 2, ' ') + prefix +
         std::to_string(location.offset) + "\n";
  for (const auto& entry : location.Entries()) {
    const auto key = std::string(entry.key) + "@" + std::to_string(entry.offset) + ": ";
    Describe(entry.value, key, depth + 1, out);
  }
  for (const auto& element : location.Elements()) Describe(element, "", depth + 1, out);
}

std::string LocationsIn(const std::string& bytes) {
  LocationBuilder locations;
  const auto reading = ReadPropertyList(bytes, &locations);
  EXPECT_EQ(testing::ErrorOf(reading.list), "");
  std::string text;
  Describe(locations.Root(), "", 0, text);
  return text;
}

TEST(ValueLocations, OfXmlAreThoseOfTheTags) {
  EXPECT_EQ(LocationsIn("<plist><dict> <key>a</key><array><true/><integer>5</integer></array>"
                        "<key>b</key> <dict/></dict></plist>"),
            "7\n"
            "  a@14: 26\n"
            "    33\n"
            "    40\n"
            "  b@68: 81\n");
}

TEST(ValueLocations, OfNothingIsTheStart) {
  LocationBuilder locations;
  EXPECT_EQ(locations.Root().offset, 0u);
}

TEST(ValueLocations, CountInTheDecodedText) {
  LocationBuilder locations;
  const auto reading = ReadPropertyList("\xEF\xBB\xBF <string>\xC3\xA4</string>", &locations);
  ASSERT_EQ(testing::ErrorOf(reading.list), "");
  EXPECT_EQ(locations.Text(), " <string>\xC3\xA4</string>");
  EXPECT_EQ(locations.Root().offset, 1u);
}

TEST(ValueLocations, OfAKeyThatOccursTwiceAreBothThere) {
  EXPECT_EQ(LocationsIn("<dict><key>a</key><true/><key>a</key><false/></dict>"),
            "0\n"
            "  a@6: 18\n"
            "  a@25: 37\n");
}

TEST(ValueLocations, OfTheOldTextFormAreThoseOfTheFirstCharacter) {
  EXPECT_EQ(LocationsIn("{ a = ( x, <00> ); \"b\" = {}; }"),
            "0\n"
            "  a@2: 6\n"
            "    8\n"
            "    11\n"
            "  b@19: 25\n");
  EXPECT_EQ(LocationsIn(" 'x'"), "1\n");
}

TEST(ValueLocations, OfBarePairsBeginAtTheFirstKey) {
  EXPECT_EQ(LocationsIn(" a = b; c = d"),
            "1\n"
            "  a@1: 5\n"
            "  c@8: 12\n");
}

TEST(ValueLocations, OfABinaryFileAreThoseOfTheObjects) {
  using testing::ArrayObject, testing::AsciiObject, testing::DictionaryObject;
  EXPECT_EQ(LocationsIn(testing::BinaryFile({DictionaryObject({1}, {2}), AsciiObject("a"),
                                             ArrayObject({1, 3}), ArrayObject({})})),
            "8\n"
            "  a@11: 13\n"
            "    11\n"
            "    16\n");
}

TEST(ValueLocations, OfAKeyThatDictionariesShareAreThereEachTime) {
  using testing::ArrayObject, testing::AsciiObject, testing::DictionaryObject;
  EXPECT_EQ(
      LocationsIn(testing::BinaryFile({ArrayObject({1, 2}), DictionaryObject({3}, {4}),
                                       DictionaryObject({3}, {3}), AsciiObject("a"), "\x09"})),
      "8\n"
      "  11\n"
      "    a@17: 19\n"
      "  14\n"
      "    a@17: 17\n");
}

TEST(ValueLocations, OfAnObjectThatIsSharedAreThereEachTime) {
  using testing::ArrayObject, testing::AsciiObject, testing::DictionaryObject;
  EXPECT_EQ(
      LocationsIn(testing::BinaryFile({ArrayObject({1, 1, 2, 2}), ArrayObject({3}),
                                       DictionaryObject({4}, {3}), "\x09", AsciiObject("a")})),
      "8\n"
      "  13\n"
      "    18\n"
      "  13\n"
      "    18\n"
      "  15\n"
      "    a@19: 18\n"
      "  15\n"
      "    a@19: 18\n");
}

TEST(ValueLocations, OfABinaryFileEndWhereItIsMalformed) {
  LocationBuilder locations;
  const auto file = testing::BinaryFile({testing::ArrayObject({1}), std::string(1, '\0')});
  EXPECT_NE(testing::ErrorOf(ReadPropertyList(file, &locations).list), "");
}

}  // namespace
}  // namespace fernwick
