#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/survey/archive_walk.h"
#include "lab/survey/directory_walk.h"
#include "lab/survey/input_list.h"
#include "lab/survey/selected.h"
#include "platform/file_system.h"

namespace fernwick::lab {

/// The recordings that a command line selects, in its order: a directory selects every
/// "*.registry.plist" below it and those in every archive below it, an archive every one in it, "-"
/// the paths, of any of these, that standard input lists, and any other argument itself.
class Selection {
 public:
  /// A recording in an archive of more than `maxSize` bytes has an error.
  explicit Selection(std::vector<std::string> arguments, std::size_t maxSize = MaxFileSize)
      : arguments_(std::move(arguments)), maxSize_(maxSize) {}

  /// Waits for standard input. Empty at the end.
  std::optional<Selected> Next();

  /// From any thread: standard input ends here, also for a Next that waits for it.
  void Stop() { input_.Stop(); }

 private:
  friend std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments);

  std::optional<Selected> NextOrNone();
  std::optional<Selected> Select(std::string path);
  std::optional<Selected> NextOfWalk();
  std::optional<Selected> NextOfInput();
  bool IsNamed(const Selected& selected) const;

  std::vector<std::string> arguments_;
  std::size_t maxSize_;
  std::size_t next_ = 0;
  std::size_t count_ = 0;  // of all that Next returned
  std::optional<DirectoryWalk> walk_;
  std::optional<ArchiveWalk> archive_;
  bool readsInput_ = false;
  InputList input_;
};

/// How many there are; empty when standard input or an archive is selected, whose end is not known.
std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments);

}  // namespace fernwick::lab
