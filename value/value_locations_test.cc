#include "value/value_places.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "testing/inputs/binary_property_list_builder.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

// Every place on a line of its own, indented: the value's offset, and before it the key with its
// own.
void Describe(const ValuePlace& place, const std::string& prefix, int depth, std::string& out) {
  out += std::string(static_cast<std::size_t>(depth) * 2, ' ') + prefix +
         std::to_string(place.offset) + "\n";
  for (const auto& entry : place.entries) {
    const auto key = std::string(entry.key.View()) + "@" + std::to_string(entry.offset) + ": ";
    Describe(entry.value, key, depth + 1, out);
  }
  for (const auto& element : place.elements) Describe(element, "", depth + 1, out);
}

std::string PlacesIn(const std::string& bytes) {
  PlaceRecorder places;
  const auto reading = ReadPropertyList(bytes, &places);
  EXPECT_EQ(reading.error, "");
  std::string text;
  Describe(places.TakeRoot(), "", 0, text);
  return text;
}

TEST(ValuePlaces, OfXmlAreThoseOfTheTags) {
  EXPECT_EQ(PlacesIn("<plist><dict> <key>a</key><array><true/><integer>5</integer></array>"
                     "<key>b</key> <dict/></dict></plist>"),
            "7\n"
            "  a@14: 26\n"
            "    33\n"
            "    40\n"
            "  b@68: 81\n");
}

TEST(ValuePlaces, OfNothingIsTheStart) {
  PlaceRecorder places;
  EXPECT_EQ(places.TakeRoot().offset, 0u);
}

TEST(ValuePlaces, CountInTheDecodedText) {
  PlaceRecorder places;
  ReadPropertyList("\xEF\xBB\xBF <string>\xC3\xA4</string>", &places);
  EXPECT_EQ(places.Text(), " <string>\xC3\xA4</string>");
  EXPECT_EQ(places.TakeRoot().offset, 1u);
}

TEST(ValuePlaces, OfAKeyThatOccursTwiceAreBothThere) {
  EXPECT_EQ(PlacesIn("<dict><key>a</key><true/><key>a</key><false/></dict>"),
            "0\n"
            "  a@6: 18\n"
            "  a@25: 37\n");
}

TEST(ValuePlaces, OfTheOldTextFormAreThoseOfTheFirstCharacter) {
  EXPECT_EQ(PlacesIn("{ a = ( x, <00> ); \"b\" = {}; }"),
            "0\n"
            "  a@2: 6\n"
            "    8\n"
            "    11\n"
            "  b@19: 25\n");
  EXPECT_EQ(PlacesIn(" 'x'"), "1\n");
}

TEST(ValuePlaces, OfBarePairsBeginAtTheFirstKey) {
  EXPECT_EQ(PlacesIn(" a = b; c = d"),
            "1\n"
            "  a@1: 5\n"
            "  c@8: 12\n");
}

TEST(ValuePlaces, OfABinaryFileAreThoseOfTheObjects) {
  using testing::ArrayObject, testing::AsciiObject, testing::DictionaryObject;
  EXPECT_EQ(PlacesIn(testing::BinaryFile({DictionaryObject({1}, {2}), AsciiObject("a"),
                                          ArrayObject({1, 3}), ArrayObject({})})),
            "8\n"
            "  a@11: 13\n"
            "    11\n"
            "    16\n");
}

TEST(ValuePlaces, OfAKeyThatDictionariesShareAreToldEachTime) {
  using testing::ArrayObject, testing::AsciiObject, testing::DictionaryObject;
  EXPECT_EQ(PlacesIn(testing::BinaryFile({ArrayObject({1, 2}), DictionaryObject({3}, {4}),
                                          DictionaryObject({3}, {3}), AsciiObject("a"), "\x09"})),
            "8\n"
            "  11\n"
            "    a@17: 19\n"
            "  14\n"
            "    a@17: 17\n");
}

}  // namespace
}  // namespace fernwick
