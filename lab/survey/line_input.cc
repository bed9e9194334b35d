#include "lab/survey/line_input.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace fernwick::lab {

std::optional<std::string> LineInput::Next() {
  do {
    while (auto line = TakeLine()) {
      if (!line->empty()) return line;
    }
  } while (ReadMore());
  return std::nullopt;
}

// The last line may lack its line feed.
std::optional<std::string> LineInput::TakeLine() {
  if (taken_ == unread_.size()) return std::nullopt;
  auto end = unread_.find('\n', searched_);
  searched_ = unread_.size();
  if (end == std::string::npos && !ended_) return std::nullopt;
  auto line = unread_.substr(taken_, end == std::string::npos ? end : end - taken_);
  taken_ = end == std::string::npos ? unread_.size() : end + 1;
  searched_ = taken_;
  return line;
}

// Whether there is anything new to look at: bytes, or the end.
bool LineInput::ReadMore() {
  pollfd ready{file_, POLLIN, 0};
  if (ended_ || poll(&ready, 1, 0) <= 0) return false;
  char piece[1 << 16];
  const ssize_t count = read(file_, piece, sizeof piece);
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return false;
  if (count < 0) error_ = std::strerror(errno);
  ended_ = count <= 0;
  unread_.erase(0, taken_);
  searched_ -= std::exchange(taken_, 0);
  if (count > 0) unread_.append(piece, static_cast<std::size_t>(count));
  return true;
}

}  // namespace fernwick::lab
