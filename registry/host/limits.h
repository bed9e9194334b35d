#pragma once

#include "platform/file_system.h"

namespace fernwick {

/// Longer files are absent: those of /sys and /proc, and those of the device tree.
inline constexpr SizeLimit MaxSystemFile = {std::size_t{64} << 10, "64 KiB"};
inline constexpr SizeLimit MaxTreeFile = {std::size_t{16} << 20, "16 MiB"};

}  // namespace fernwick
