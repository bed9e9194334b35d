#pragma once

#include <cstdint>
#include <string_view>

#include "registry/registry.h"

namespace fernwick {

// Typed reads of an entry's own property. An integer, a real and a boolean are numbers and are all
// accepted. Each returns 0 and stores the number in `result`; or returns RegistryNotFound, when the
// property is absent or anything but a number, and leaves `result` exactly as it was.

/// Whether the number is other than 0.
RegistryStatus ReadBoolProperty(Registry& registry, RegistryEntry entry, std::string_view key,
                                bool& result);

/// The low 32 bits of what ReadU64Property reads: 0x300000000 reads as 0. Truncated, not refused,
/// so that a controller whose "Route String" has nothing in its low 32 bits counts as being at the
/// root.
RegistryStatus ReadU32Property(Registry& registry, RegistryEntry entry, std::string_view key,
                               std::uint32_t& result);

/// 64 bits: an integer in two's-complement form, a real truncated toward zero and saturated.
RegistryStatus ReadU64Property(Registry& registry, RegistryEntry entry, std::string_view key,
                               std::uint64_t& result);

/// Packed binary-coded decimal to integer: 0x1234 is 1234. The digits 0xA to 0xF are not rejected,
/// they count 10 to 15 times their weight: 0x1A is 20.
std::uint32_t DecodeBcd(std::uint32_t packed);

}  // namespace fernwick
