#pragma once

#include <string>
#include <string_view>

namespace fernwick::lab {

/// Writes all of `bytes` to the descriptor, however often that takes. Returns whether it could;
/// errno tells why not.
bool WriteWhole(int file, std::string_view bytes);

/// Writes a file that appears whole or not at all: under a name of its own beside `path` first,
/// which then takes the place of the file that stood there. Links are followed to it; what is no
/// file, as a device or a pipe, is left alone, which is an error. A signal to end that comes
/// meanwhile ends the process when the file is whole. Returns what went wrong; empty when nothing
/// did.
std::string WriteOutputFile(const std::string& path, std::string_view bytes);

}  // namespace fernwick::lab
