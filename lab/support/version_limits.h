#pragma once

#include <cstdint>

namespace fernwick::lab {

/// The greatest version that a controller stores: a port this whole number, of eight decimal
/// digits, and a Thunderbolt controller the same with this many hundredths.
inline constexpr std::uint64_t MaxStoredMajor = 99'999'999;
inline constexpr std::uint64_t MaxStoredHundredths = 63;

}  // namespace fernwick::lab
