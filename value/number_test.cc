#include "value/number.h"

#include <gtest/gtest.h>

#include <limits>

namespace fernwick {
namespace {

constexpr std::uint64_t TwoTo53 = std::uint64_t{1} << 53;

TEST(Number, TwoTo53PlusOneIsGreaterThanTheRealTwoTo53) {
  EXPECT_EQ(CompareNumbers(Integer(TwoTo53 + 1), 9007199254740992.0),
            std::partial_ordering::greater);
}

TEST(Number, IntegerEqualsRealOfTheSameValue) {
  EXPECT_EQ(CompareNumbers(Integer(2), 2.0), std::partial_ordering::equivalent);
  EXPECT_EQ(CompareNumbers(2.0, Integer(2)), std::partial_ordering::equivalent);
}

TEST(Number, RealsCompareAsTheyAre) {
  EXPECT_EQ(CompareNumbers(0.25, 0.5), std::partial_ordering::less);
  EXPECT_EQ(CompareNumbers(0.5, 0.25), std::partial_ordering::greater);
  EXPECT_EQ(CompareNumbers(0.0, -0.0), std::partial_ordering::equivalent);
}

TEST(Number, FractionDecidesWhenWholePartsAgree) {
  EXPECT_EQ(CompareNumbers(Integer(23), 23.1), std::partial_ordering::less);
  EXPECT_EQ(CompareNumbers(23.1, Integer(23)), std::partial_ordering::greater);
  EXPECT_EQ(CompareNumbers(Integer(-23), -23.1), std::partial_ordering::greater);
}

TEST(Number, NegativeIntegerIsLessThanLargeUnsigned) {
  EXPECT_EQ(CompareNumbers(Integer(-1), Integer(std::numeric_limits<std::uint64_t>::max())),
            std::partial_ordering::less);
}

TEST(Number, IntegersOfTheSameBitsDifferBySign) {
  EXPECT_NE(Integer(-1), Integer(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_NE(Integer(std::numeric_limits<std::int64_t>::min()), Integer(std::uint64_t{1} << 63));
}

TEST(Number, BoundsOfIntegersAgainstReals) {
  const Integer greatest(std::numeric_limits<std::uint64_t>::max());
  const Integer least(std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(CompareNumbers(greatest, 18446744073709551616.0), std::partial_ordering::less);
  EXPECT_EQ(CompareNumbers(least, -9223372036854775808.0), std::partial_ordering::equivalent);
  EXPECT_EQ(CompareNumbers(least, -9223372036854777856.0), std::partial_ordering::greater);
  EXPECT_EQ(CompareNumbers(greatest, std::numeric_limits<double>::infinity()),
            std::partial_ordering::less);
}

// A long double represents either exactly.
TEST(Number, AnIntegerAndARealComparePrecisely) {
  for (const double real : {-1e30, -5.5, -1.5, -1.0, -0.5, -0.0, 0.0, 0.5, 1.0, 4.5, 5.0, 1e30}) {
    for (const std::int64_t integer : {-6, -5, -2, -1, 0, 1, 4, 5}) {
      const auto a = static_cast<long double>(integer);
      const auto b = static_cast<long double>(real);
      EXPECT_EQ(CompareWithReal(integer, real), a <=> b) << integer << real;
      EXPECT_EQ(CompareNumbers(Integer(integer), real), a <=> b) << integer << real;
      EXPECT_EQ(CompareNumbers(real, Integer(integer)), b <=> a) << integer << real;
    }
  }
}

TEST(Number, NanIsUnorderedWithEverything) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(CompareNumbers(nan, Integer(0)), std::partial_ordering::unordered);
  EXPECT_EQ(CompareNumbers(Integer(0), nan), std::partial_ordering::unordered);
  EXPECT_EQ(CompareNumbers(nan, nan), std::partial_ordering::unordered);
}

TEST(Number, ToUnsigned64TruncatesAndSaturates) {
  EXPECT_EQ(ToUnsigned64(Integer(-1)), 0xFFFFFFFFFFFFFFFF);
  EXPECT_EQ(ToUnsigned64(5.9), 5u);
  EXPECT_EQ(ToUnsigned64(-5.9), 0u);
  EXPECT_EQ(ToUnsigned64(1e30), 0xFFFFFFFFFFFFFFFF);
  EXPECT_EQ(ToUnsigned64(std::numeric_limits<double>::quiet_NaN()), 0u);
}

TEST(Number, ToSigned64BitsTruncatesAndSaturates) {
  EXPECT_EQ(ToSigned64Bits(Integer(-1)), 0xFFFFFFFFFFFFFFFF);
  EXPECT_EQ(ToSigned64Bits(-5.9), 0xFFFFFFFFFFFFFFFB);
  EXPECT_EQ(ToSigned64Bits(1e30), 0x7FFFFFFFFFFFFFFF);
  EXPECT_EQ(ToSigned64Bits(9223372036854775808.0), 0x7FFFFFFFFFFFFFFF);
  EXPECT_EQ(ToSigned64Bits(-1e30), 0x8000000000000000);
  EXPECT_EQ(ToSigned64Bits(std::numeric_limits<double>::quiet_NaN()), 0u);
}

TEST(Number, NanIsNonZero) {
  EXPECT_TRUE(IsNonZero(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_TRUE(IsNonZero(0.5));
  EXPECT_FALSE(IsNonZero(-0.0));
  EXPECT_FALSE(IsNonZero(Integer(0)));
}

}  // namespace
}  // namespace fernwick
