#pragma once

#include <string>
#include <string_view>

namespace fernwick::testing {

/// A new directory under the system's temporary one, removed with its contents at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  /// Absolute, without a "/" at its end.
  const std::string& Path() const { return path_; }

  /// Writes a file at a path relative to the directory, its parent directories included. Returns
  /// its absolute path.
  std::string Write(std::string_view relativePath, std::string_view contents) const;

 private:
  std::string path_;
};

}  // namespace fernwick::testing
