#include "lab/survey/selection.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace fernwick::lab {
namespace {

bool IsDirectory(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::optional<Selected> Selection::Next() {
  while (archive_ || walk_ || readsInput_ || next_ < arguments_.size()) {
    auto selected = NextOrNone();
    if (!selected) continue;
    selected->isNamed = IsNamed(*selected);
    selected->index = count_++;
    names_.Add(selected->path);
    names_.Add(std::string_view("", 1));
    if (!limits_.shard || limits_.shard->Has(selected->path)) return selected;
  }
  return std::nullopt;
}

// Empty also where something ended or began. REQUIRES: there is something left.
std::optional<Selected> Selection::NextOrNone() {
  if (archive_) {
    auto selected = archive_->Next();
    if (!selected) archive_.reset();
    return selected;
  }
  if (walk_) return NextOfWalk();
  if (readsInput_) return NextOfInput();
  const auto& argument = arguments_[next_++];
  if (argument != "-") return Select(argument);
  readsInput_ = true;
  input_.Restart();
  return std::nullopt;
}

// Whether the last argument that was used is the path itself: not what a directory or an archive
// contains and not what standard input lists.
bool Selection::IsNamed(const Selected& selected) const {
  return !readsInput_ && selected.path == arguments_[next_ - 1];
}

// A path itself. Empty for a directory and for an archive, over which the walk then goes.
std::optional<Selected> Selection::Select(std::string path) {
  if (IsDirectory(path)) {
    walk_.emplace(std::move(path));
  } else if (IsArchive(path)) {
    archive_.emplace(std::move(path), limits_.maxSize);
  } else {
    return Selected{std::move(path)};
  }
  return std::nullopt;
}

// Empty for an archive, and at the end of the directory.
std::optional<Selected> Selection::NextOfWalk() {
  auto selected = walk_->Next();
  if (!selected) walk_.reset();
  if (!selected || !selected->error.empty() || !IsArchive(selected->path)) return selected;
  archive_.emplace(std::move(selected->path), limits_.maxSize);
  return std::nullopt;
}

// Empty for a directory and for an archive, and at the end of the input.
std::optional<Selected> Selection::NextOfInput() {
  if (auto path = input_.Next()) return Select(*std::move(path));
  readsInput_ = false;
  auto error = input_.TakeError();
  if (error.empty()) return std::nullopt;
  const int status =
      input_.LacksResources() ? LabStatus::OutOfResources : LabStatus::UnreadableInput;
  return Selected{.path = "-", .error = std::move(error), .errorStatus = status};
}

std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments,
                                         const SelectionLimits& limits) {
  if (std::ranges::find(arguments, "-") != arguments.end()) return std::nullopt;
  Selection selection(arguments);
  std::size_t count = 0;
  while (selection.walk_ || selection.next_ < arguments.size()) {
    const auto selected = selection.NextOrNone();
    if (selected && (!limits.shard || limits.shard->Has(selected->path))) ++count;
    if (selection.archive_) return std::nullopt;
  }
  return count;
}

}  // namespace fernwick::lab
