#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/survey/directory_walk.h"
#include "lab/survey/line_input.h"

namespace fernwick::lab {

/// The recordings that a command line selects, in its order: a directory stands for every
/// "*.registry.plist" below it, "-" for the paths, of either, that standard input has, one a line
/// (empty lines aside), and any other argument for itself.
class Selection {
 public:
  explicit Selection(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

  /// None at the end, and as long as standard input has nothing.
  std::optional<Selected> Next();

  /// Whether Next gave nothing because standard input has nothing yet.
  bool IsWaiting() const { return input_ && input_->IsWaiting(); }

 private:
  std::optional<Selected> Select(std::string path);
  std::optional<Selected> NextOfInput();

  std::vector<std::string> arguments_;
  std::size_t next_ = 0;
  std::optional<LineInput> input_;
  std::optional<DirectoryWalk> walk_;
};

/// How many there are; none when standard input is among the arguments, whose end is not known.
std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments);

}  // namespace fernwick::lab
