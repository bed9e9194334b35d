#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/survey/directory_walk.h"

namespace fernwick::lab {

/// The recordings that a command line selects, in its order: a directory selects every
/// "*.registry.plist" below it, "-" the paths, of either, that standard input has, one a line
/// (empty lines aside), and any other argument itself.
class Selection {
 public:
  explicit Selection(std::vector<std::string> arguments);
  ~Selection();
  Selection(const Selection&) = delete;
  Selection& operator=(const Selection&) = delete;

  /// Waits for standard input. None at the end.
  std::optional<Selected> Next();

  /// From any thread: standard input ends here, also for a Next that waits for it.
  void Stop();

 private:
  std::optional<Selected> Select(std::string path);
  std::optional<Selected> NextOfInput();
  std::optional<std::string> NextLine();
  bool ReadMore();

  std::vector<std::string> arguments_;
  std::size_t next_ = 0;
  std::optional<DirectoryWalk> walk_;
  int stop_;  // a descriptor that is readable after Stop

  // Standard input, while it is read.
  bool readsInput_ = false;
  bool hasInputEnded_ = false;
  std::string unread_;     // from taken_ on
  std::size_t taken_ = 0;  // bytes of unread_ that are not any more
  std::string inputError_;
};

/// How many there are; none when standard input is among the arguments, whose end is not known.
std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments);

}  // namespace fernwick::lab
