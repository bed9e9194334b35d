#include "lab/support/words.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::List;

TEST(PersonalityName, CountsThoseOfATypeFrom1) {
  EXPECT_EQ(PersonalityName(Types::Usbc, 0), "personality 1");
  EXPECT_EQ(PersonalityName(Types::LegacyThunderbolt, 9), "personality 10");
  EXPECT_EQ(PersonalityName(Types::LegacyUsbc, 0), "the personality");
}

TEST(InlineText, IsOneLine) {
  EXPECT_EQ(InlineText(41.050000000999994), "41.050000000999994");
  EXPECT_EQ(InlineText(0xFFFFFFFFFFFFFFFF), "18446744073709551615");
  EXPECT_EQ(InlineText("a\n\x1B[1m"), "\"a\\n\\033[1m\"");
  EXPECT_EQ(InlineText(Bytes("Zed")), "<5a6564>");
  EXPECT_EQ(InlineText(List({})), "an empty array");
  EXPECT_EQ(InlineText(List({1, "b", List({2}), Dict({})})), "[1, \"b\", an array, a dictionary]");
  EXPECT_EQ(InlineText(testing::Copies(9, 1)), "an array of 9");
  EXPECT_EQ(InlineText(Dict({{"a", 1}})), "a dictionary");
}

TEST(InlineTextWithHex, ShowsIntegersFrom10Twice) {
  EXPECT_EQ(InlineTextWithHex(9), "9");
  EXPECT_EQ(InlineTextWithHex(10), "10 (0xA)");
  EXPECT_EQ(InlineTextWithHex(-10), "-10");
  EXPECT_EQ(InlineTextWithHex(0xFFFFFFFFFFFFFFFF), "18446744073709551615 (0xFFFFFFFFFFFFFFFF)");
  EXPECT_EQ(InlineTextWithHex(List({16, 1})), "[16 (0x10), 1]");
  EXPECT_EQ(InlineTextWithHex(16.0), "16");
}

TEST(KindOf, NamesEveryKind) {
  EXPECT_EQ(KindOf(Dict({})), "a dictionary");
  EXPECT_EQ(KindOf(List({})), "an array");
  EXPECT_EQ(KindOf("x"), "a string");
  EXPECT_EQ(KindOf(5), "an integer");
  EXPECT_EQ(KindOf(5.0), "a real");
  EXPECT_EQ(KindOf(true), "a boolean");
  EXPECT_EQ(KindOf(Bytes("x")), "data");
  EXPECT_EQ(KindOf(Date{5}), "a date");
}

TEST(NamesOf, AreThoseOfTheSet) {
  using Names = std::vector<std::string_view>;
  EXPECT_EQ(NamesOf(Types::None), Names{});
  EXPECT_EQ(NamesOf(Types::All), (Names{"LegacyUSBC", "USBC", "LegacyThunderbolt", "Thunderbolt"}));
  EXPECT_EQ(NamesOf(Types::Usbc | Types::Thunderbolt), (Names{"USBC", "Thunderbolt"}));
}

TEST(Counted, IsSingularOnlyForOne) {
  EXPECT_EQ(Counted(0, "match", "matches"), "0 matches");
  EXPECT_EQ(Counted(1, "match", "matches"), "1 match");
  EXPECT_EQ(Counted(2, "match", "matches"), "2 matches");
}

}  // namespace
}  // namespace fernwick::lab
