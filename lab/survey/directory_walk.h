#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/survey/selected.h"

namespace fernwick::lab {

/// Goes over every file below a directory whose name is that of a recording or of an archive, in
/// the bytewise order of their paths. A link to a directory is not followed, so there is no loop. A
/// depth-first walk that stores the listings of the directories between the top and the current
/// path, not those of all.
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
