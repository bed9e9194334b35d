#pragma once

#include <string_view>

namespace fernwick::lab {

/// Prints "fernwick-lab: MESSAGE" as one line on standard error. What a file may have put into the
/// message reaches no terminal raw: control characters are shown as octal escapes.
void PrintError(std::string_view message);

}  // namespace fernwick::lab
