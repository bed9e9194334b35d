#pragma once

#include <string_view>

#include "registry/registry.h"

namespace fernwick {

/// Whether the switch is set, by a token "NAME=VALUE" of the boot arguments or else by the NVRAM
/// variable of that name: by any value but the single character 0. A token that is the bare name
/// ends the process abnormally.
bool ReadBypassSwitch(Registry& registry, std::string_view name);

}  // namespace fernwick
