#include "lab/survey/directory_walk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "lab/support/messages.h"
#include "lab/survey/archive_walk.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};

bool IsDirectory(const std::string& parent, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status;
  const auto path = AppendPathComponent(parent, entry.d_name);
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The names of recordings, archives and directories, in no order.
std::vector<std::string> NamesIn(DIR* directory, const std::string& path) {
  std::vector<std::string> names;
  while (const dirent* entry = readdir(directory)) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    if (IsDirectory(path, *entry)) {
      names.push_back(std::string(name) + '/');
    } else if (HasRecordingSuffix(name) || HasArchiveSuffix(name)) {
      names.emplace_back(name);
    }
  }
  return names;
}

Selected Unreadable(const std::string& path, int error) {
  const Error reason = {.message = std::strerror(error), .systemError = error};
  return {.path = path, .error = reason.message, .errorStatus = UnreadableStatus(reason)};
}

}  // namespace

void DirectoryWalk::Enter(std::string directory) {
  auto& level = levels_.emplace_back(Level{std::move(directory), {}});
  const std::unique_ptr<DIR, CloseDirectory> stream(opendir(level.path.c_str()));
  errno = stream == nullptr ? errno : 0;
  if (stream != nullptr) level.names = NamesIn(stream.get(), level.path);
  level.error = errno;
  // With its "/", a directory is sorted as the paths below it are.
  std::ranges::sort(level.names);
}

std::optional<Selected> DirectoryWalk::Next() {
  while (!levels_.empty()) {
    auto& level = levels_.back();
    if (level.error != 0) return Unreadable(level.path, std::exchange(level.error, 0));
    if (level.next == level.names.size()) {
      levels_.pop_back();
      continue;
    }
    auto name = std::move(level.names[level.next++]);
    const bool isDirectory = name.ends_with('/');
    if (isDirectory) name.pop_back();
    auto path = AppendPathComponent(level.path, name);
    if (!isDirectory) return Selected{std::move(path)};
    Enter(std::move(path));
  }
  return std::nullopt;
}

}  // namespace fernwick::lab
