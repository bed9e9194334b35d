#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <optional>
#include <variant>

namespace fernwick {

/// A whole number from −2^63 to 2^64−1.
class Integer {
 public:
  template <std::integral T>
  requires(!std::same_as<T, bool>) constexpr Integer(T value)  // NOLINT: an integer is an Integer
      : bits_(static_cast<std::uint64_t>(value)), negative_(value < T{}) {}

  /// The integer −`magnitude`; empty when it is below −2^63.
  static constexpr std::optional<Integer> Negated(std::uint64_t magnitude) {
    if (magnitude > std::uint64_t{1} << 63) return std::nullopt;
    return Integer(std::uint64_t{0} - magnitude, magnitude != 0);
  }

  /// The integer of that 64-bit two's-complement form and sign. REQUIRES: the bits of a negative
  /// one are 2^63 or more.
  static constexpr Integer OfBits(std::uint64_t bits, bool isNegative) {
    return {bits, isNegative};
  }

  /// The 64-bit two's-complement form: −1 is 0xFFFFFFFFFFFFFFFF, and so is 2^64−1.
  constexpr std::uint64_t Bits() const { return bits_; }
  constexpr bool IsNegative() const { return negative_; }

  friend constexpr bool operator==(const Integer&, const Integer&) = default;
  friend constexpr std::strong_ordering operator<=>(const Integer& a, const Integer& b) {
    if (a.negative_ != b.negative_) {
      return a.negative_ ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    return a.bits_ <=> b.bits_;  // two's complement keeps the order within one sign
  }

 private:
  constexpr Integer(std::uint64_t bits, bool negative) : bits_(bits), negative_(negative) {}

  std::uint64_t bits_;
  bool negative_;
};

/// A value that can be compared and computed with. A boolean counts as the integer 1 or 0.
using Number = std::variant<Integer, double>;

/// The exact mathematical order: neither side is rounded, so 2^53+1 is greater than the real 2^53.
/// NaN is unordered with everything, itself included.
std::partial_ordering CompareNumbers(const Number& a, const Number& b);

/// The same for the two kinds that are compared most.
std::partial_ordering CompareWithReal(const Integer& integer, double real);

/// 64 bits, unsigned: an integer in its two's-complement form; a real truncated toward zero and
/// saturated to 0 ... 2^64−1, NaN as 0.
std::uint64_t ToUnsigned64(const Number& number);

/// 64 bits in two's-complement form: an integer as it is; a real truncated toward zero and
/// saturated to −2^63 ... 2^63−1, NaN as 0. Narrower widths are its low bits.
std::uint64_t ToSigned64Bits(const Number& number);

/// Whether the number is other than 0; NaN is.
bool IsNonZero(const Number& number);

}  // namespace fernwick
