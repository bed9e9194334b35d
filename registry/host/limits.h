#pragma once

#include <cstddef>

namespace fernwick {

/// Bytes that a file of /sys or /proc, and one of the device tree, can have. Longer ones are
/// absent.
inline constexpr std::size_t MaxSystemFile = std::size_t{64} << 10;
inline constexpr std::size_t MaxTreeFile = std::size_t{16} << 20;

}  // namespace fernwick
