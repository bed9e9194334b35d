#include "lab/survey/selection.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace fernwick::lab {
namespace {

bool IsDirectory(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::optional<Selected> Selection::Next() {
  for (;;) {
    if (walk_) {
      if (auto selected = walk_->Next()) return selected;
      walk_.reset();
    } else if (input_) {
      if (auto selected = NextOfInput()) return selected;
      if (!walk_ && IsWaiting()) return std::nullopt;
    } else if (next_ == arguments_.size()) {
      return std::nullopt;
    } else if (const auto& argument = arguments_[next_++]; argument == "-") {
      input_.emplace(STDIN_FILENO);
    } else if (auto selected = Select(argument)) {
      return selected;
    }
  }
}

// A path that stands for itself. None for a directory, over which the walk then goes.
std::optional<Selected> Selection::Select(std::string path) {
  if (!IsDirectory(path)) return Selected{std::move(path)};
  walk_.emplace(std::move(path));
  return std::nullopt;
}

std::optional<Selected> Selection::NextOfInput() {
  if (auto line = input_->Next()) return Select(*std::move(line));
  if (input_->IsWaiting()) return std::nullopt;
  const auto error = input_->Error();
  input_.reset();
  if (error.empty()) return std::nullopt;
  return Selected{"-", error};
}

std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments) {
  if (std::ranges::find(arguments, "-") != arguments.end()) return std::nullopt;
  Selection selection(arguments);
  std::size_t count = 0;
  while (selection.Next()) ++count;
  return count;
}

}  // namespace fernwick::lab
