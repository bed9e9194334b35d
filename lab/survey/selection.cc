#include "lab/survey/selection.h"

#include <sys/stat.h>

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
    std::optional<Selected> selected;
    if (walk_) {
      selected = walk_->Next();
      if (!selected) walk_.reset();
    } else if (readsInput_) {
      selected = NextOfInput();
    } else if (next_ == arguments_.size()) {
      return std::nullopt;
    } else if (const auto& argument = arguments_[next_++]; argument == "-") {
      readsInput_ = true;
      input_.Restart();
    } else {
      selected = Select(argument);
    }
    if (!selected) continue;
    selected->isNamed = IsNamed(*selected);
    return selected;
  }
}

// Whether the last argument that was used is the path itself: not what a directory contains and
// not what standard input lists.
bool Selection::IsNamed(const Selected& selected) const {
  return !readsInput_ && selected.path == arguments_[next_ - 1];
}

// A path itself. Empty for a directory, over which the walk then goes.
std::optional<Selected> Selection::Select(std::string path) {
  if (!IsDirectory(path)) return Selected{std::move(path)};
  walk_.emplace(std::move(path));
  return std::nullopt;
}

// Empty for a directory, and at the end of the input.
std::optional<Selected> Selection::NextOfInput() {
  if (auto path = input_.Next()) return Select(*std::move(path));
  readsInput_ = false;
  auto error = input_.TakeError();
  if (error.empty()) return std::nullopt;
  return Selected{
      .path = "-", .error = std::move(error), .lacksResources = input_.LacksResources()};
}

LabError ErrorOf(const Selected& selected) {
  return {{selected.error},
          selected.lacksResources ? LabStatus::OutOfMemory : LabStatus::UnreadableInput};
}

std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments) {
  if (std::ranges::find(arguments, "-") != arguments.end()) return std::nullopt;
  Selection selection(arguments);
  std::size_t count = 0;
  while (selection.Next()) ++count;
  return count;
}

}  // namespace fernwick::lab
