// An integer and a real are compared exactly, without converting the integer to a double: a real
// outside the range of integers decides by itself; otherwise its integral part, which is then an
// exact integer, is compared with the integer, and where they are equal the sign of the fractional
// part decides. Constant time.

#include "value/number.h"

#include <cmath>
#include <limits>

namespace fernwick {
namespace {

constexpr double TwoTo63 = 9223372036854775808.0;
constexpr double TwoTo64 = 18446744073709551616.0;

// Truncated toward zero. REQUIRES: −2^63 ≤ real < 2^64.
Integer WholePart(double real) {
  if (real < 0) return static_cast<std::int64_t>(real);
  return static_cast<std::uint64_t>(real);
}

}  // namespace

std::partial_ordering CompareWithReal(const Integer& integer, double real) {
  if (std::isnan(real)) return std::partial_ordering::unordered;
  if (real >= TwoTo64) return std::partial_ordering::less;
  if (real < -TwoTo63) return std::partial_ordering::greater;
  const auto order = integer <=> WholePart(real);
  if (order != std::strong_ordering::equal) return order;
  // coverage: 1 of 6 branches: Two reals are unordered only where one is NaN, which is excluded
  // above.
  return std::trunc(real) <=> real;  // the fractional part decides
}

std::partial_ordering CompareNumbers(const Number& a, const Number& b) {
  struct Compare {
    std::partial_ordering operator()(Integer x, Integer y) const { return x <=> y; }
    std::partial_ordering operator()(double x, double y) const { return x <=> y; }
    std::partial_ordering operator()(Integer x, double y) const { return CompareWithReal(x, y); }
    std::partial_ordering operator()(double x, Integer y) const {
      return 0 <=> CompareWithReal(y, x);  // NOLINT(modernize-use-nullptr): it is a number
    }
  };
  return std::visit(Compare(), a, b);
}

std::uint64_t ToUnsigned64(const Number& number) {
  if (const auto* integer = std::get_if<Integer>(&number)) return integer->Bits();
  const double real = *std::get_if<double>(&number);
  if (!(real > 0)) return 0;  // negative, zero or NaN
  if (real >= TwoTo64) return std::numeric_limits<std::uint64_t>::max();
  return static_cast<std::uint64_t>(real);
}

std::uint64_t ToSigned64Bits(const Number& number) {
  if (const auto* integer = std::get_if<Integer>(&number)) return integer->Bits();
  const double real = *std::get_if<double>(&number);
  if (std::isnan(real)) return 0;
  if (real >= TwoTo63) return Integer(std::numeric_limits<std::int64_t>::max()).Bits();
  if (real <= -TwoTo63) return Integer(std::numeric_limits<std::int64_t>::min()).Bits();
  return Integer(static_cast<std::int64_t>(real)).Bits();
}

bool IsNonZero(const Number& number) {
  if (const auto* integer = std::get_if<Integer>(&number)) return integer->Bits() != 0;
  return *std::get_if<double>(&number) != 0;
}

}  // namespace fernwick
