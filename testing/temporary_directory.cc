#include "testing/temporary_directory.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fernwick::testing {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
  std::string pattern = (fs::temp_directory_path() / "fernwick-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::perror(pattern.c_str());
    std::abort();
  }
  path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryDirectory::Write(std::string_view relativePath,
                                      std::string_view contents) const {
  const fs::path path = fs::path(path_) / relativePath;
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << contents;
  return path.string();
}

}  // namespace fernwick::testing
