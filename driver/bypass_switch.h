#pragma once

#include <string_view>

#include "platform/fault.h"
#include "registry/registry.h"
#include "value/result.h"

namespace fernwick {

/// The entry whose properties are the boot arguments and the NVRAM variables.
inline constexpr std::string_view BootOptionsPath = "IODeviceTree:/options";

/// The switches: the names of the boot arguments and NVRAM variables that set them.
inline constexpr std::string_view UpdatesSwitch = "fernwick_bypass_usbc_updates";
inline constexpr std::string_view VersionSwitch = "fernwick_bypassversioncheck";

/// Whether the switch is set, by a token "NAME=VALUE" of the boot arguments or else by the NVRAM
/// variable of that name: by any value but the single character 0. Tokens are separated by
/// blanks, and a further "=" ends VALUE. The variable is a string or data in UTF-8; any other sets
/// nothing. A token that is the bare name is a fault.
Result<bool, Fault> ReadBypassSwitch(Registry& registry, std::string_view name);

}  // namespace fernwick
