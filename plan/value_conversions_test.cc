#include "plan/value_conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;

constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

struct IntegerCase {
  PropertyValue value;
  std::uint64_t expected;
};

TEST(IntegerOf, ConvertsEveryKindAsStated) {
  const std::vector<IntegerCase> cases = {
      {0, 0},
      {-1, 0xFFFFFFFFFFFFFFFF},
      {0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF},
      {true, 1},
      {false, 0},
      {2.9, 2},
      {-2.9, 0xFFFFFFFFFFFFFFFE},
      {1e30, 0x7FFFFFFFFFFFFFFF},
      {-1e30, 0x8000000000000000},
      {Infinity, 0x7FFFFFFFFFFFFFFF},
      {Nan, 0},
      {"42", 42},
      {" \t\n\v\f\r-42 and more", 0xFFFFFFFFFFFFFFD6},
      {"+7", 7},
      {"+-7", 0},
      {"- 7", 0},
      {"0x10", 0},
      {"12.9", 12},
      {"seven", 0},
      {"", 0},
      {"18446744073709551615", 0x7FFFFFFFFFFFFFFF},
      {"-99999999999999999999", 0x8000000000000000},
      {List({1}), 0},
      {Dict({{"a", 1}}), 0},
      {testing::Bytes("1"), 0},
      {Date{1}, 0},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    EXPECT_EQ(IntegerOf(&cases[i].value), cases[i].expected) << "row " << i;
  }
}

TEST(IntegerOf, IsZeroForAnAbsentValue) {
  EXPECT_EQ(IntegerOf(nullptr), 0u);
}

TEST(Integer32Of, IsTheLowHalf) {
  const PropertyValue wide(0x200000005);
  const PropertyValue negative(-1);
  const PropertyValue largeReal(4294967296.0 + 3);
  EXPECT_EQ(Integer32Of(&wide), 5u);
  EXPECT_EQ(Integer32Of(&negative), 4294967295u);
  EXPECT_EQ(Integer32Of(&largeReal), 3u);
  EXPECT_EQ(Integer32Of(nullptr), 0u);
}

struct RealCase {
  PropertyValue value;
  float expected;
};

TEST(RealOf, ConvertsEveryKindAsStated) {
  const std::vector<RealCase> cases = {
      {3, 3.0F},
      {-3, -3.0F},
      {true, 1.0F},
      {43.1, 43.1F},
      {0xFFFFFFFFFFFFFFFF, 18446744073709551616.0F},
      {1e300, std::numeric_limits<float>::infinity()},
      {"43.1 beta", 43.1F},
      {" \t-1.5e1", -15.0F},
      {".5", 0.5F},
      {"1020.05", 1020.05F},
      {"1e999", std::numeric_limits<float>::infinity()},
      {"infinity", 0.0F},
      {"nan", 0.0F},
      {"0x10", 0.0F},
      {"", 0.0F},
      {List({1}), 0.0F},
      {Dict({{"a", 1}}), 0.0F},
      {testing::Bytes("1"), 0.0F},
      {Date{1}, 0.0F},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    EXPECT_EQ(RealOf(&cases[i].value), cases[i].expected) << "row " << i;
  }
}

// 2^24+1 lies halfway between two single-precision numbers; what is added to it is lost in double
// precision, and rounding twice would go down.
TEST(RealOf, RoundsAnIntegerOnce) {
  const PropertyValue value((std::uint64_t{1} << 54) + (std::uint64_t{1} << 30) + 1);
  EXPECT_EQ(RealOf(&value), 18014400656965632.0F);
}

TEST(RealOf, KeepsNan) {
  const PropertyValue value(Nan);
  EXPECT_TRUE(std::isnan(RealOf(&value)));
}

TEST(RealOf, IsZeroForAnAbsentValue) {
  EXPECT_EQ(RealOf(nullptr), 0.0F);
}

TEST(TextOf, IsTheTextOfAStringOnly) {
  const PropertyValue string("text");
  const PropertyValue number(1);
  EXPECT_EQ(TextOf(&string), "text");
  EXPECT_EQ(TextOf(&number), std::nullopt);
  EXPECT_EQ(TextOf(nullptr), std::nullopt);
}

}  // namespace
}  // namespace fernwick
