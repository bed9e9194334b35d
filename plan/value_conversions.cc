#include "plan/value_conversions.h"

#include <cstdlib>
#include <string>

#include "value/number.h"
#include "value/unicode/ascii.h"

namespace fernwick {
namespace {

// White space, a sign and digits, saturated to the signed 64-bit range.
std::uint64_t LeadingInteger(std::string_view text) {
  return static_cast<std::uint64_t>(std::strtoll(std::string(text).c_str(), nullptr, 10));
}

float LeadingReal(std::string_view text) {
  text = SkipAsciiWhiteSpace(text);
  // The C library would also read "inf", "nan" and hexadecimal numbers.
  const std::string decimal(text.substr(0, text.find_first_not_of("0123456789.eE+-")));
  return std::strtof(decimal.c_str(), nullptr);
}

float ToSingle(Integer integer) {
  if (integer.IsNegative()) return static_cast<float>(static_cast<std::int64_t>(integer.Bits()));
  return static_cast<float>(integer.Bits());
}

float ToSingle(double real) {
  return static_cast<float>(real);
}

}  // namespace

std::uint64_t IntegerOf(const PropertyValue* value) {
  if (value == nullptr) return 0;
  if (const auto number = value->AsNumber()) return ToSigned64Bits(*number);
  if (const auto text = value->AsString()) return LeadingInteger(*text);
  return 0;
}

std::uint32_t Integer32Of(const PropertyValue* value) {
  return static_cast<std::uint32_t>(IntegerOf(value));
}

float RealOf(const PropertyValue* value) {
  if (value == nullptr) return 0;
  if (const auto number = value->AsNumber()) {
    return std::visit([](auto content) { return ToSingle(content); }, *number);
  }
  if (const auto text = value->AsString()) return LeadingReal(*text);
  return 0;
}

std::optional<std::string_view> TextOf(const PropertyValue* value) {
  return value == nullptr ? std::nullopt : value->AsString();
}

}  // namespace fernwick
