#pragma once

#include <cstddef>
#include <string_view>

namespace fernwick {

/// The same for equal keys, and another for most keys that are used side by side. It is made of the
/// length and three characters, however long the key is; of which, and how they are weighed, was
/// tried out on the keys of configurations and registries.
constexpr std::size_t KeyHash(std::string_view key) {
  if (key.empty()) return 0;
  const std::size_t size = key.size();
  const auto at = [&](std::size_t i) -> std::size_t { return static_cast<unsigned char>(key[i]); };
  return size + 3 * at(size / 8) + 17 * at(size / 2) + 9 * at(size * 3 / 4);
}

}  // namespace fernwick
