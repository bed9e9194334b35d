#include "lab/survey/coverage/payload_boards.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "lab/lint/board_names.h"

namespace fernwick::lab {

namespace fs = std::filesystem;

Result<std::vector<std::string>, LabError> BoardsOf(const std::string& personalitiesDirectory) {
  std::vector<std::string> boards;
  std::error_code error;
  auto entry = fs::directory_iterator(personalitiesDirectory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    const auto type = entry->status(unknown).type();
    const bool isDirectory = type == fs::file_type::directory || type == fs::file_type::none;
    if (isDirectory) boards.push_back(entry->path().filename());
  }
  if (error) return PathFailure(personalitiesDirectory, error.value());
  std::erase_if(boards, IsNoBoard);
  std::ranges::sort(boards);
  return boards;
}

// Empty components and "." say nothing. ".." after a link is not what is before it, so that a path
// with it is resolved.
std::string BoardNamed(const std::string& identifier, const std::string& personalitiesDirectory) {
  fs::path path;
  bool goesUp = false;
  for (const auto& component : fs::path(identifier).relative_path()) {
    if (component.empty() || component == ".") continue;
    goesUp = goesUp || component == "..";
    path /= component;
  }
  if (goesUp) {
    const fs::path directory = personalitiesDirectory;
    std::error_code removed;
    path = fs::canonical(directory / path, removed)
               .lexically_relative(fs::canonical(directory, removed));
  }
  return path.empty() ? "." : path.string();
}

}  // namespace fernwick::lab
