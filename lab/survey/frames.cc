#include "lab/survey/frames.h"

#include <cstdint>
#include <cstring>

namespace fernwick::lab {
namespace {

constexpr std::size_t HeadSize = 1 + sizeof(std::uint64_t);

}  // namespace

std::string Framed(char kind, std::string_view bytes) {
  const std::uint64_t length = bytes.size();
  std::string frame(HeadSize, kind);
  std::memcpy(frame.data() + 1, &length, sizeof length);
  return frame.append(bytes);
}

std::optional<Frame> FrameReader::Next() {
  if (unread_.size() < HeadSize) return std::nullopt;
  std::uint64_t length = 0;
  std::memcpy(&length, unread_.data() + 1, sizeof length);
  if (unread_.size() - HeadSize < length) return std::nullopt;
  Frame frame{unread_.front(), unread_.substr(HeadSize, length)};
  unread_.erase(0, HeadSize + length);
  return frame;
}

}  // namespace fernwick::lab
