#pragma once

#include <cstdint>

namespace fernwick {

/// Process-wide flags, 0 when a run starts and only ever set to 1: written before the matcher runs
/// and only read from then on.

/// USB-C and Thunderbolt updates are skipped altogether on this computer.
extern std::uint8_t BypassUsbcUpdates;

/// The requirement checks do not compare the firmware version with the one installed.
extern std::uint8_t BypassVersionCheck;

}  // namespace fernwick
