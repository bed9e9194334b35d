#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fernwick::testing {

/// `bytes` with the one at `offset` replaced. REQUIRES: offset lies inside.
inline std::string WithByte(std::string bytes, std::size_t offset, unsigned char byte) {
  bytes[offset] = static_cast<char>(byte);
  return bytes;
}

/// The first `size` bytes.
inline std::string Truncated(std::string_view bytes, std::size_t size) {
  return std::string(bytes.substr(0, size));
}

/// `part`, `count` times over.
inline std::string Repeated(std::string_view part, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += part;
  return text;
}

}  // namespace fernwick::testing
