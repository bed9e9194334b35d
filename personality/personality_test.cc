#include "personality/personality.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "testing/inputs/odd_values.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;
using testing::NonNumbers;

TEST(PersonalitiesOf, AnArrayIsItsElementsWhateverTheyAre) {
  const Array value = List({Dict({{"Version", 1}}), 5, Array()});
  for (const char* type : {"LegacyThunderbolt", "Thunderbolt", "USBC"}) {
    EXPECT_EQ(PersonalitiesOf(type, value), value) << type;
    EXPECT_EQ(PersonalitiesOf(type, Array()), Array()) << type;
  }
}

TEST(PersonalitiesOf, TheLegacyUsbcOneIsTheDictionaryItself) {
  const PropertyValue value = Dict({{"Version", 1}});
  EXPECT_EQ(PersonalitiesOf("LegacyUSBC", value), List({value}));
}

TEST(PersonalitiesOf, AValueOfAnotherShapeIsNothing) {
  for (const auto& [name, value] : NonNumbers()) {
    const bool isArray = value.AsArray().has_value();
    EXPECT_EQ(PersonalitiesOf("USBC", value).has_value(), isArray) << name;
    const bool isDictionary = value.AsDictionary().has_value();
    EXPECT_EQ(PersonalitiesOf("LegacyUSBC", value).has_value(), isDictionary) << name;
  }
  EXPECT_EQ(PersonalitiesOf("USBC", 5), std::nullopt);
  EXPECT_EQ(PersonalitiesOf("LegacyUSBC", true), std::nullopt);
}

// As many unread keys as a dictionary may have before it counts as one with many.
Record UnreadKeys() {
  Record keys;
  for (std::size_t i = 0; i < FewEntries; ++i) {
    keys.Set(testing::Kept("Unread " + std::to_string(i)), 1);
  }
  return keys;
}

TEST(WithoutUnreadKeys, CandidatesWithFewKeysAreTheSame) {
  const auto few = UnreadKeys();
  const Array candidates = List({Dictionary(few), Dict({{"Note", 1}}), 5});
  Arena arena;
  EXPECT_EQ(WithoutUnreadKeys(candidates, arena).begin(), candidates.begin());
  EXPECT_EQ(arena.Size(), 0);
  EXPECT_EQ(WithoutUnreadKeys(Array(), arena), Array());
}

TEST(WithoutUnreadKeys, OneWithManyKeysLosesThoseThatNothingReads) {
  auto many = UnreadKeys();
  many.Set("RID", List({1, 2}));
  many.Set("Firmware", "a.bin");
  many.Set("Engineering Version", 0);  // a key of controllers alone
  const auto whole = many;
  Arena arena;
  EXPECT_EQ(WithoutUnreadKeys(List({Dict({{"Note", 1}}), Dictionary(many), 5}), arena),
            List({Dict({{"Note", 1}}), Dict({{"RID", List({1, 2})}, {"Firmware", "a.bin"}}), 5}));
  EXPECT_EQ(many, whole);
}

}  // namespace
}  // namespace fernwick
