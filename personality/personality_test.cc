#include "personality/personality.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace fernwick
