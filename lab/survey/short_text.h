#pragma once

#include <string>
#include <string_view>

namespace fernwick::lab {

/// A text that many rows may repeat: the first bytes of a long one, whole characters, and its
/// length.
std::string ShortText(std::string_view text);

}  // namespace fernwick::lab
