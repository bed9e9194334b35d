#pragma once

#include <string_view>

namespace fernwick::lab {

/// Whether the tool reads registry properties of that name, exactly, from any entry: those of
/// controllers, of the board, and the boot arguments and NVRAM variables that set bypass switches.
bool ToolReads(std::string_view property);

}  // namespace fernwick::lab
