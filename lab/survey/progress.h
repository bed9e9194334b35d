#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace fernwick::lab {

/// "123 of 1000, 41 a second, 0:21 left"; without a total "123, 41 a second".
std::string ProgressText(std::size_t done, std::optional<std::size_t> total,
                         std::chrono::milliseconds elapsed);

/// One line on standard error that says how far a long run has come. Where that is no terminal,
/// nothing is ever written.
class Progress {
 public:
  /// The total is not known for certain; none when it is not known at all.
  explicit Progress(std::optional<std::size_t> total);
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Whether there is a terminal to show it.
  static bool IsShown();

  /// One more is done. Shows it, a few times a second at most.
  void Step();

  /// Takes the line away, so that something else can be written.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<std::size_t> total_;
  std::size_t done_ = 0;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_ = begin_;
  bool isVisible_ = false;
};

}  // namespace fernwick::lab
