#include "personality/personality.h"

#include <gtest/gtest.h>

#include "testing/inputs/odd_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;
using testing::NonNumbers;

// As a vector; nothing for a value of the wrong shape.
std::optional<Array> Candidates(std::string_view type, const PropertyValue& value) {
  const auto candidates = PersonalitiesOf(type, value);
  if (!candidates) return std::nullopt;
  return Array(candidates->begin(), candidates->end());
}

TEST(PersonalitiesOf, AnArrayIsItsElementsWhateverTheyAre) {
  const Array value = {Dict({{"Version", 1}}), 5, Array()};
  for (const char* type : {"LegacyThunderbolt", "Thunderbolt", "USBC"}) {
    EXPECT_EQ(Candidates(type, value), value) << type;
    EXPECT_EQ(Candidates(type, Array()), Array()) << type;
  }
}

TEST(PersonalitiesOf, TheLegacyUsbcOneIsTheDictionaryItself) {
  const Dictionary value = {{"Version", 1}};
  EXPECT_EQ(Candidates("LegacyUSBC", value), List({value}));
}

TEST(PersonalitiesOf, AValueOfAnotherShapeIsNothing) {
  for (const auto& [name, value] : NonNumbers()) {
    const bool isArray = value.AsArray() != nullptr;
    EXPECT_EQ(Candidates("USBC", value).has_value(), isArray) << name;
    const bool isDictionary = value.AsDictionary() != nullptr;
    EXPECT_EQ(Candidates("LegacyUSBC", value).has_value(), isDictionary) << name;
  }
  EXPECT_EQ(Candidates("USBC", 5), std::nullopt);
  EXPECT_EQ(Candidates("LegacyUSBC", true), std::nullopt);
}

}  // namespace
}  // namespace fernwick
