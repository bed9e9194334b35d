#pragma once

#include <string_view>

namespace fernwick::fuzz {

/// Ends the process, so that the fuzzing engine keeps the input, unless `property` holds. `name`
/// tells what was to hold.
void Hold(bool property, std::string_view name);

}  // namespace fernwick::fuzz
