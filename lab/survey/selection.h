#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/messages.h"
#include "lab/survey/directory_walk.h"
#include "lab/survey/input_list.h"

namespace fernwick::lab {

/// The recordings that a command line selects, in its order: a directory selects every
/// "*.registry.plist" below it, "-" the paths, of either, that standard input lists, and any other
/// argument itself.
class Selection {
 public:
  explicit Selection(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

  /// Waits for standard input. Empty at the end.
  std::optional<Selected> Next();

  /// From any thread: standard input ends here, also for a Next that waits for it.
  void Stop() { input_.Stop(); }

 private:
  std::optional<Selected> Select(std::string path);
  std::optional<Selected> NextOfInput();
  bool IsNamed(const Selected& selected) const;

  std::vector<std::string> arguments_;
  std::size_t next_ = 0;
  std::optional<DirectoryWalk> walk_;
  bool readsInput_ = false;
  InputList input_;
};

/// The error of what was selected. REQUIRES: there is one.
LabError ErrorOf(const Selected& selected);

/// How many there are; empty when standard input is among the arguments, whose end is not known.
std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments);

}  // namespace fernwick::lab
