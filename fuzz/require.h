#pragma once

#include <string_view>

namespace fernwick::fuzz {

/// Ends the process, so that the fuzzing engine keeps the input, unless `property` is true. `name`
/// says what the property is.
void Require(bool property, std::string_view name);

}  // namespace fernwick::fuzz
