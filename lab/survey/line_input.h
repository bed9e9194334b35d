#pragma once

#include <optional>
#include <string>

namespace fernwick::lab {

/// Reads lines from a descriptor without ever waiting for one.
class LineInput {
 public:
  /// Does not own the descriptor.
  explicit LineInput(int file) : file_(file) {}

  /// The next line that is not empty, without its line feed. None at the end, after an error, and
  /// as long as there is none.
  std::optional<std::string> Next();

  /// Whether Next gave nothing because there is none yet.
  bool IsWaiting() const { return !ended_; }

  /// Why reading failed; empty when it did not.
  const std::string& Error() const { return error_; }

 private:
  std::optional<std::string> TakeLine();
  bool ReadMore();

  int file_;
  std::string unread_;
  std::size_t taken_ = 0;     // of unread_
  std::size_t searched_ = 0;  // up to here there is no line feed behind taken_
  bool ended_ = false;
  std::string error_;
};

}  // namespace fernwick::lab
