#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fernwick::lab {

/// What two processes tell each other over a pipe: a kind, the length of what follows as eight
/// bytes in the machine's own order, and any bytes.
struct Frame {
  char kind;
  std::string bytes;

  friend bool operator==(const Frame&, const Frame&) = default;
};

/// The bytes of a frame.
std::string Framed(char kind, std::string_view bytes);

/// Puts frames together from the pieces in which a pipe gives them.
class FrameReader {
 public:
  void Append(std::string_view piece) { unread_.append(piece); }

  /// The next frame, once all of it is there.
  std::optional<Frame> Next();

 private:
  std::string unread_;
};

}  // namespace fernwick::lab
