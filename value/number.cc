#include "value/number.h"

#include <cmath>
#include <limits>

namespace fernwick {
namespace {

constexpr double TwoTo63 = 9223372036854775808.0;
constexpr double TwoTo64 = 18446744073709551616.0;

std::partial_ordering Reversed(std::partial_ordering order) {
  return 0 <=> order;  // NOLINT(modernize-use-nullptr): it is a number that is compared
}

// REQUIRES: real is a whole number from −2^63 to below 2^64.
Integer ExactInteger(double real) {
  if (real < 0) return static_cast<std::int64_t>(real);
  return static_cast<std::uint64_t>(real);
}

std::partial_ordering Compare(Integer integer, double real) {
  if (std::isnan(real)) return std::partial_ordering::unordered;
  if (real >= TwoTo64) return std::partial_ordering::less;
  if (real < -TwoTo63) return std::partial_ordering::greater;
  const double whole = std::trunc(real);
  const auto order = integer <=> ExactInteger(whole);
  if (order != std::strong_ordering::equal) return order;
  return whole <=> real;  // the integers agree; what is left of the real decides
}

std::partial_ordering Compare(Integer a, Integer b) {
  return a <=> b;
}

std::partial_ordering Compare(double a, double b) {
  return a <=> b;
}

std::partial_ordering Compare(double real, Integer integer) {
  return Reversed(Compare(integer, real));
}

}  // namespace

std::partial_ordering CompareNumbers(const Number& a, const Number& b) {
  return std::visit([](const auto& x, const auto& y) { return Compare(x, y); }, a, b);
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
