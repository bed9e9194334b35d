#pragma once

#include <string>
#include <string_view>

namespace fernwick::lab {

/// A text from a file or a path as a terminal may be shown it: control characters, and bytes that
/// are not UTF-8, as octal escapes.
std::string PrintableText(std::string_view text);

}  // namespace fernwick::lab
