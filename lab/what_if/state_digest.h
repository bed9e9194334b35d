#pragma once

#include <compare>
#include <cstdint>
#include <string_view>

#include "registry/registry.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// A digest of what differs from a computer as it was recorded: of its properties, whatever their
/// order. 0 while nothing differs. 128 bits of an additive hash: different states have the same
/// digest only by accident, not to be expected, but it is not made to resist chosen values.
class StateDigest {
 public:
  /// The entry has the property, or no longer has it.
  void Add(RegistryEntry entry, std::string_view property, const PropertyValue& value);
  void Remove(RegistryEntry entry, std::string_view property, const PropertyValue& value);

  friend auto operator<=>(const StateDigest&, const StateDigest&) = default;

 private:
  std::uint64_t first_ = 0;
  std::uint64_t second_ = 0;
};

}  // namespace fernwick::lab
