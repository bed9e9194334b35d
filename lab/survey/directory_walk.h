#pragma once

#include <optional>
#include <string>
#include <vector>

namespace fernwick::lab {

/// A path that was selected. Where a directory could not be read, its path and why, and so for
/// standard input with "-"; otherwise the error is empty.
struct Selected {
  std::string path;
  std::string error = {};
  bool isNamed = false;         // it is an argument of the command line itself
  bool lacksResources = false;  // the error is a lack of memory or descriptors

  friend bool operator==(const Selected&, const Selected&) = default;
};

/// Goes over every "*.registry.plist" below a directory, in the bytewise order of their paths. A
/// link to a directory is not followed, so there is no loop. A depth-first walk that stores the
/// names of the directories between the top and the current path, not those of all.
class DirectoryWalk {
 public:
  explicit DirectoryWalk(std::string directory) { Enter(std::move(directory)); }

  /// Empty at the end.
  std::optional<Selected> Next();

 private:
  struct Level {
    std::string path;
    std::vector<std::string> names;  // sorted; that of a directory ends in "/"
    std::size_t next = 0;
    int error = 0;  // errno
  };

  void Enter(std::string directory);

  std::vector<Level> levels_;
};

}  // namespace fernwick::lab
