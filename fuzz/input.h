#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fernwick::fuzz {

/// The input from the fuzzing engine as a text.
inline std::string_view InputText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace fernwick::fuzz
