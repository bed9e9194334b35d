#pragma once

#include <string_view>

namespace fernwick::lab {

/// Writes all of `bytes` to the descriptor, however often that takes. Returns whether it could;
/// errno tells why not.
bool WriteWhole(int file, std::string_view bytes);

}  // namespace fernwick::lab
