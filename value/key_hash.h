#pragma once

#include <cstddef>
#include <string_view>

namespace fernwick {

/// The same for equal keys, and another for most keys that are used side by side. It is made of the
/// length and three characters, however long the key is.
constexpr std::size_t KeyHash(std::string_view key) {
  const std::size_t size = key.size();
  if (size < 2) return size;
  const auto at = [&](std::size_t i) -> std::size_t { return static_cast<unsigned char>(key[i]); };
  return size + 3 * at(1) + 13 * at(size / 2) + 11 * at(size * 3 / 4);
}

}  // namespace fernwick
