#pragma once

#include <cstddef>
#include <string>

namespace fernwick {

/// More open arrays and dictionaries than this, one inside the other, are refused by every reader.
inline constexpr std::size_t MaximumNesting = 512;

/// The message of every reader for it.
inline constexpr char NestedTooDeeply[] =
    "more than 512 arrays and dictionaries are nested in each other";

/// The first fault that a reader met: where, and what is wrong. A reader stops at it.
class ParseFault {
 public:
  bool IsSet() const { return !message_.empty(); }
  /// In bytes of what is read; 0 as long as there is no fault.
  std::size_t Offset() const { return offset_; }
  const std::string& Message() const { return message_; }

  /// Keeps the first fault alone. Returns false, for the caller to pass on.
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
