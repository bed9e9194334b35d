#include "lab/explain/near_boards.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <utility>

#include "lab/support/spelling.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t MaxDistance = 2;
constexpr std::size_t MaxCount = 3;

}  // namespace

std::vector<std::string> NearBoards(std::string_view boardIdString,
                                    const std::string& personalitiesDirectory) {
  const auto wanted = LowerCase(boardIdString);
  std::vector<std::pair<std::size_t, std::string>> near;
  std::error_code error;
  for (fs::directory_iterator entry(personalitiesDirectory, error), end; entry != end;
       entry.increment(error)) {
    std::error_code unknown;
    if (!entry->is_directory(unknown)) continue;
    auto name = entry->path().filename().string();
    const auto distance = EditDistance(wanted, LowerCase(name), MaxDistance);
    if (distance <= MaxDistance) near.emplace_back(distance, std::move(name));
  }
  std::ranges::sort(near);
  if (near.size() > MaxCount) near.resize(MaxCount);
  std::vector<std::string> names;
  for (auto& [distance, name] : near) names.push_back(std::move(name));
  return names;
}

}  // namespace fernwick::lab
