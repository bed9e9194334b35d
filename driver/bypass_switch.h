#pragma once

#include <string_view>

#include "registry/registry.h"

namespace fernwick {

/// The entry whose properties are the boot arguments and the NVRAM variables.
inline constexpr std::string_view BootOptionsPath = "IODeviceTree:/options";

/// The fault of a boot argument that is the bare name of a switch.
inline constexpr char BareSwitchFault[] = "a boot argument is a switch name without a value";

/// Whether the switch is set, by a token "NAME=VALUE" of the boot arguments or else by the NVRAM
/// variable of that name: by any value but the single character 0. Tokens stand between
/// blanks, and a further "=" ends VALUE. The variable is a string or data in UTF-8; any other sets
/// nothing. A token that is the bare name ends the process abnormally.
bool ReadBypassSwitch(Registry& registry, std::string_view name);

}  // namespace fernwick
