#include "personality/bypass_flags.h"

namespace fernwick {

std::uint8_t BypassUsbcUpdates = 0;
std::uint8_t BypassVersionCheck = 0;

}  // namespace fernwick
