#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace fernwick::testing {

/// The whole file; empty when it cannot be read.
inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace fernwick::testing
