#include "fuzz/same_value.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "testing/property_values.h"

namespace fernwick::fuzz {
namespace {

using testing::Dict;
using testing::List;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(SameValue, NanIsItselfAndTheZeroesDiffer) {
  EXPECT_TRUE(SameValue(NotANumber, -NotANumber));
  EXPECT_FALSE(SameValue(NotANumber, 0.0));
  EXPECT_FALSE(SameValue(0.0, NotANumber));
  EXPECT_TRUE(SameValue(-0.0, -0.0));
  EXPECT_FALSE(SameValue(0.0, -0.0));
}

TEST(SameValue, LooksIntoArraysAndDictionaries) {
  const Dictionary dictionary = Dict({{"a", List({NotANumber, "b"})}});
  EXPECT_TRUE(SameValue(dictionary, dictionary));
  EXPECT_FALSE(SameValue(dictionary, Dict({{"a", List({NotANumber, "c"})}})));
  EXPECT_FALSE(SameValue(dictionary, Dict({{"b", List({NotANumber, "b"})}})));
  EXPECT_FALSE(SameValue(dictionary, Dict({{"a", List({NotANumber})}})));
  EXPECT_FALSE(SameValue(Dictionary(), Array()));
}

TEST(SameValue, KindsDiffer) {
  EXPECT_FALSE(SameValue(1, 1.0));
  EXPECT_FALSE(SameValue(1, true));
  EXPECT_FALSE(SameValue("a", testing::Bytes("a")));
}

TEST(IsSmall, CountsEveryByteAndValueEachTimeItIsReached) {
  const std::string text(65536, 'x');
  EXPECT_TRUE(IsSmall(std::string_view(text).substr(1)));
  EXPECT_FALSE(IsSmall(text));
  EXPECT_FALSE(IsSmall(Data{text}));
  EXPECT_FALSE(IsSmall(Dict({{text, 1}})));
  PropertyValue doubled = 1;
  for (int i = 0; i < 15; ++i) doubled = List({doubled, doubled});
  EXPECT_TRUE(IsSmall(doubled));
  EXPECT_FALSE(IsSmall(List({doubled, doubled})));
}

}  // namespace
}  // namespace fernwick::fuzz
