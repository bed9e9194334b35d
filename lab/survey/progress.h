#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace fernwick::lab {

/// "123 of 1000, 41 a second, 0:21 left"; without a total "123, 41 a second".
std::string ProgressText(std::size_t done, std::optional<std::size_t> total,
                         std::chrono::milliseconds elapsed);

/// One line on standard error with the progress of a long run. Where that is not a terminal,
/// nothing is written.
class Progress {
 public:
  /// The total is an estimate; empty when it is unknown.
  explicit Progress(std::optional<std::size_t> total);
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Whether there is a terminal to show it.
  static bool IsShown();

  /// Counts one more, and shows it a few times a second at most.
  void Step();

  /// Erases the line, so that something else can be written.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  const bool isShown_ = IsShown();
  std::optional<std::size_t> total_;
  std::size_t done_ = 0;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_ = begin_;
  bool isVisible_ = false;
};

}  // namespace fernwick::lab
