#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/stable_hash.h"
#include "lab/survey/archive_walk.h"
#include "lab/survey/directory_walk.h"
#include "lab/survey/input_list.h"
#include "lab/survey/selected.h"
#include "lab/survey/shards/shard.h"
#include "platform/file_system.h"

namespace fernwick::lab {

/// What a selection leaves out.
struct SelectionLimits {
  std::size_t maxSize = MaxFileSize;  // a larger recording in an archive has an error; in bytes
  std::optional<Shard> shard = {};    // what is in others is left out
};

/// The recordings that a command line selects, in its order: a directory selects every
/// "*.registry.plist" below it and those in every archive below it, an archive every one in it, "-"
/// the paths, of any of these, that standard input lists, and any other argument itself.
class Selection {
 public:
  explicit Selection(std::vector<std::string> arguments, SelectionLimits limits = {})
      : arguments_(std::move(arguments)), limits_(limits) {}

  /// Waits for standard input. Empty at the end.
  std::optional<Selected> Next();

  /// How many were selected so far, those of other shards as well.
  std::size_t Count() const { return count_; }

  /// A hash of their names, in their order.
  std::string NamesHash() const { return HashText(names_.Value()); }

  /// From any thread: standard input ends here, also for a Next that waits for it.
  void Stop() { input_.Stop(); }

 private:
  friend std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments,
                                                  const SelectionLimits& limits);

  std::optional<Selected> NextOrNone();
  std::optional<Selected> Select(std::string path);
  std::optional<Selected> NextOfWalk();
  std::optional<Selected> NextOfInput();
  bool IsNamed(const Selected& selected) const;

  std::vector<std::string> arguments_;
  SelectionLimits limits_;
  std::size_t next_ = 0;
  std::size_t count_ = 0;
  StableHash names_;
  std::optional<DirectoryWalk> walk_;
  std::optional<ArchiveWalk> archive_;
  bool readsInput_ = false;
  InputList input_;
};

/// How many there are; empty when standard input or an archive is selected, whose end is not known.
std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments,
                                         const SelectionLimits& limits = {});

}  // namespace fernwick::lab
