#pragma once

#include <cstddef>
#include <string>

namespace fernwick {

/// More open arrays and dictionaries than this, one inside the other, are refused by every reader.
inline constexpr std::size_t MaxNesting = 512;

/// The message of every reader for more than that.
inline constexpr char NestedTooDeeply[] =
    "more than 512 arrays and dictionaries are nested in each other";

/// The first fault that a reader found: where, and what is wrong. A reader stops at it.
class ParseFault {
 public:
  bool IsSet() const { return !message_.empty(); }
  /// The offset in bytes; 0 as long as there is no fault.
  std::size_t Offset() const { return offset_; }
  const std::string& Message() const { return message_; }

  /// Keeps the first fault and ignores later ones. Returns false, for the caller to pass on.
  bool Set(std::size_t offset, std::string message) {
    if (IsSet()) return false;
    offset_ = offset;
    message_ = std::move(message);
    return false;
  }

 private:
  std::size_t offset_ = 0;
  std::string message_;
};

}  // namespace fernwick
