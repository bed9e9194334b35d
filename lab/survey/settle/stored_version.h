#pragma once

#include <cstdint>
#include <optional>

#include "value/property_value.h"

namespace fernwick::lab {

/// How a Thunderbolt controller stores its version.
struct ThunderboltVersionWords {
  std::uint32_t rom = 0;     // the major version in packed BCD
  std::uint32_t eeprom = 0;  // hundredths, 0 to 63, of released firmware

  friend bool operator==(const ThunderboltVersionWords&, const ThunderboltVersionWords&) = default;
};

/// What a port stores once it has firmware of that version: the greatest whole number of eight
/// digits that is at most the number, in packed BCD. Empty when there is none: the number is
/// negative or NaN. REQUIRES: it is a number.
std::optional<std::uint32_t> StoredPortVersion(const PropertyValue& offered);

/// What a Thunderbolt controller stores: the greatest version of a major number of eight digits and
/// hundredths up to .63 that is at most the number. Empty as for a port.
std::optional<ThunderboltVersionWords> StoredThunderboltVersion(const PropertyValue& offered);

}  // namespace fernwick::lab
