#include "lab/survey/input_list.h"

#include <limits.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace fernwick::lab {

InputList::InputList() : stop_(eventfd(0, EFD_CLOEXEC)) {}

InputList::~InputList() {
  if (stop_ >= 0) close(stop_);
}

std::optional<std::string> InputList::Next() {
  if (stop_ < 0) return Fail("no descriptor is left to wait for standard input");
  for (;;) {
    auto path = NextOrEmpty();
    if (!path || !path->empty()) return path;
    if (isNulSeparated_) return Fail("an empty path in a list that NUL characters separate");
  }
}

std::string InputList::TakeError() {
  return std::exchange(error_, {});
}

void InputList::Stop() {
  eventfd_write(stop_, 1);
}

// The next path or an empty line.
std::optional<std::string> InputList::NextOrEmpty() {
  std::size_t searched = 0;
  for (;;) {
    const auto rest = std::string_view(unread_).substr(returned_);
    const auto end = rest.find(isNulSeparated_ ? '\0' : '\n', searched);
    if (end != std::string_view::npos) return Take(end, 1);
    // A line may end in a carriage return as well.
    if (rest.size() > PATH_MAX + 1) return Take(rest.size(), 0);
    searched = rest.size();
    if (ReadMore()) continue;
    if (rest.empty()) return std::nullopt;
    return Take(searched, 0);
  }
}

std::optional<std::string> InputList::Take(std::size_t length, std::size_t separatorLength) {
  auto path = unread_.substr(returned_, length);
  returned_ += length + separatorLength;
  const bool isLine = !isNulSeparated_ && separatorLength > 0;
  if (isLine && path.ends_with('\r')) path.pop_back();
  if (path.size() <= PATH_MAX) return path;
  return Fail("a path of more than " + std::to_string(PATH_MAX) + " bytes");
}

std::optional<std::string> InputList::Fail(std::string error) {
  error_ = std::move(error);
  hasEnded_ = true;
  unread_.clear();
  returned_ = 0;
  return std::nullopt;
}

// Removes what was returned and appends what comes next. False at the end of the input, after an
// error and after Stop.
bool InputList::ReadMore() {
  char piece[1 << 16];
  while (!hasEnded_) {
    pollfd awaited[] = {{STDIN_FILENO, POLLIN, 0}, {stop_, POLLIN, 0}};
    if (poll(awaited, 2, -1) < 0) continue;  // a signal
    const ssize_t count = awaited[1].revents != 0 ? 0 : read(STDIN_FILENO, piece, sizeof piece);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) error_ = std::strerror(errno);
    hasEnded_ = count <= 0;
    if (hasEnded_) break;
    const std::string_view added(piece, static_cast<std::size_t>(count));
    unread_.erase(0, std::exchange(returned_, 0));
    unread_ += added;
    if (added.find('\0') != std::string_view::npos) isNulSeparated_ = true;
    return true;
  }
  return false;
}

}  // namespace fernwick::lab
