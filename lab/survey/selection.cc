#include "lab/survey/selection.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace fernwick::lab {
namespace {

bool IsDirectory(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Selection::Selection(std::vector<std::string> arguments)
    : arguments_(std::move(arguments)), stop_(eventfd(0, EFD_CLOEXEC)) {}

Selection::~Selection() {
  close(stop_);
}

std::optional<Selected> Selection::Next() {
  for (;;) {
    if (walk_) {
      if (auto selected = walk_->Next()) return selected;
      walk_.reset();
    } else if (readsInput_) {
      if (auto selected = NextOfInput()) return selected;
    } else if (next_ == arguments_.size()) {
      return std::nullopt;
    } else if (const auto& argument = arguments_[next_++]; argument == "-") {
      readsInput_ = true;
      hasInputEnded_ = false;
    } else if (auto selected = Select(argument)) {
      return selected;
    }
  }
}

void Selection::Stop() {
  eventfd_write(stop_, 1);
}

// A path itself. None for a directory, over which the walk then goes.
std::optional<Selected> Selection::Select(std::string path) {
  if (!IsDirectory(path)) return Selected{std::move(path)};
  walk_.emplace(std::move(path));
  return std::nullopt;
}

// None for a directory, and at the end of the input.
std::optional<Selected> Selection::NextOfInput() {
  if (auto line = NextLine()) return Select(*std::move(line));
  readsInput_ = false;
  if (inputError_.empty()) return std::nullopt;
  return Selected{"-", std::exchange(inputError_, {})};
}

// The next line that is not empty; the last one of the input may lack its line feed.
std::optional<std::string> Selection::NextLine() {
  std::string line;
  while (line.empty()) {
    auto end = unread_.find('\n', taken_);
    while (end == std::string::npos) {
      const auto searched = unread_.size() - taken_;
      if (!ReadMore()) break;
      end = unread_.find('\n', searched);
    }
    line = unread_.substr(taken_, end == std::string::npos ? end : end - taken_);
    taken_ = end == std::string::npos ? unread_.size() : end + 1;
    if (line.empty() && end == std::string::npos) return std::nullopt;
  }
  return line;
}

// Removes what is taken and appends what comes next. False at the end of the input, after an error
// and after Stop.
bool Selection::ReadMore() {
  char piece[1 << 16];
  while (!hasInputEnded_) {
    pollfd awaited[] = {{STDIN_FILENO, POLLIN, 0}, {stop_, POLLIN, 0}};
    if (poll(awaited, 2, -1) < 0) continue;  // a signal
    const ssize_t count = awaited[1].revents != 0 ? 0 : read(STDIN_FILENO, piece, sizeof piece);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) inputError_ = std::strerror(errno);
    hasInputEnded_ = count <= 0;
    if (hasInputEnded_) break;
    unread_.erase(0, std::exchange(taken_, 0));
    unread_.append(piece, static_cast<std::size_t>(count));
    return true;
  }
  return false;
}

std::optional<std::size_t> CountSelected(const std::vector<std::string>& arguments) {
  if (std::ranges::find(arguments, "-") != arguments.end()) return std::nullopt;
  Selection selection(arguments);
  std::size_t count = 0;
  while (selection.Next()) ++count;
  return count;
}

}  // namespace fernwick::lab
