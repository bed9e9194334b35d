#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "value/property_value.h"

namespace fernwick {

// How the report and the plan convert the values of a match record. Null is an absent value.

/// 64 bits in two's-complement form; a narrower integer is its low bits. A number is converted as
/// by ToSigned64Bits; a text is the decimal number at its start, saturated; anything else and an
/// absent value are 0.
std::uint64_t IntegerOf(const PropertyValue* value);

/// The low 32 bits of IntegerOf.
std::uint32_t Integer32Of(const PropertyValue* value);

/// A number rounded once to single precision; a text is the decimal number at its start; anything
/// else and an absent value are 0.
float RealOf(const PropertyValue* value);

/// The text of a string, as PropertyValue::AsString; empty for anything else and for an absent
/// value.
std::optional<std::string_view> TextOf(const PropertyValue* value);

}  // namespace fernwick
