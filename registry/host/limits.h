#pragma once

#include <cstddef>

namespace fernwick {

/// Longer files are absent: those of /sys and /proc, and those of the device tree.
inline constexpr std::size_t MaxSystemFile = std::size_t{64} << 10;
inline constexpr std::size_t MaxTreeFile = std::size_t{16} << 20;

}  // namespace fernwick
