#include "fuzz/same_value.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "testing/property_values.h"

namespace fernwick::fuzz {
namespace {

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(SameValue, TakesNanAsItselfAndTellsTheZeroesApart) {
  EXPECT_TRUE(SameValue(NotANumber, -NotANumber));
  EXPECT_FALSE(SameValue(NotANumber, 0.0));
  EXPECT_FALSE(SameValue(0.0, NotANumber));
  EXPECT_TRUE(SameValue(-0.0, -0.0));
  EXPECT_FALSE(SameValue(0.0, -0.0));
}

TEST(SameValue, LooksIntoArraysAndDictionaries) {
  const Dictionary dictionary{{"a", Array{NotANumber, "b"}}};
  EXPECT_TRUE(SameValue(dictionary, dictionary));
  EXPECT_FALSE(SameValue(dictionary, Dictionary{{"a", Array{NotANumber, "c"}}}));
  EXPECT_FALSE(SameValue(dictionary, Dictionary{{"b", Array{NotANumber, "b"}}}));
  EXPECT_FALSE(SameValue(dictionary, Dictionary{{"a", Array{NotANumber}}}));
  EXPECT_FALSE(SameValue(Dictionary{}, Array{}));
}

TEST(SameValue, TellsKindsApart) {
  EXPECT_FALSE(SameValue(1, 1.0));
  EXPECT_FALSE(SameValue(1, true));
  EXPECT_FALSE(SameValue("a", testing::Bytes("a")));
}

TEST(IsSmall, CountsEveryByteAndValueEachTimeItIsReached) {
  constexpr std::size_t Most = 65536;
  EXPECT_TRUE(IsSmall(std::string(Most - 1, 'x')));
  EXPECT_FALSE(IsSmall(std::string(Most, 'x')));
  EXPECT_FALSE(IsSmall(testing::Bytes(std::string(Most, 'x'))));
  EXPECT_FALSE(IsSmall(Dictionary{{std::string(Most, 'x'), 1}}));
  PropertyValue doubled = 1;
  for (int i = 0; i < 15; ++i) doubled = Array{doubled, doubled};
  EXPECT_TRUE(IsSmall(doubled));
  EXPECT_FALSE(IsSmall(Array{doubled, doubled}));
}

}  // namespace
}  // namespace fernwick::fuzz
