#pragma once

#include <string>

namespace fernwick::lab {

/// Makes paths comparable: absolute, without "." and "..", links in the directory resolved, so that
/// "./fleet/a", "fleet/a" and "/home/x/fleet/a" are one. The file itself may be a link, and need
/// not exist. "-" stays as it is. Remembers the last directory, so that a run of files in one
/// directory resolves it once.
class AbsolutePaths {
 public:
  /// Relative paths are relative to this directory.
  explicit AbsolutePaths(const std::string& directory);

  std::string Of(const std::string& path);

  /// The path of the file relative to the directory. REQUIRES: `absolute` is from Of.
  std::string RelativeTo(const std::string& absolute) const;

 private:
  std::string directory_;
  std::string lastParent_;    // as it was in a path
  std::string lastResolved_;  // the same, resolved
};

}  // namespace fernwick::lab
