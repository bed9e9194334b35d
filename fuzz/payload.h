#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "testing/temporary_directory.h"

namespace fernwick::fuzz {

/// A payload on disk whose one configuration is that of any number of boards: it is written again
/// for every input, which may name any board, without a directory for each. Removed at the end.
class Payload {
 public:
  Payload();

  const std::string& Path() const { return directory_.Path(); }

  /// Makes `configuration` the contents of every board's Config.plist.
  void Configure(std::string_view configuration);

  /// Lets the board have the configuration. Not one whose name is no name of a directory, and no
  /// further one when there are very many.
  void AddBoard(std::string_view boardId);

 private:
  testing::TemporaryDirectory directory_;
  std::string configurationPath_;
  std::set<std::string, std::less<>> boards_;
};

}  // namespace fernwick::fuzz
