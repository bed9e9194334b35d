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

}  // namespace fernwick::lab
