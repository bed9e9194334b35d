#pragma once

#include <cstdio>
#include <string_view>

namespace fernwick {

/// The stream that a run prints to. It remembers the first write that failed, so that a plan that
/// did not arrive is never taken for a success.
class Output {
 public:
  /// Does not own `stream`.
  explicit Output(std::FILE* stream) : stream_(stream) {}

  /// As printf.
  [[gnu::format(printf, 2, 3)]] void Print(const char* format, ...);

  void Write(std::string_view text);

  void Flush();

  /// The error number of the first write that failed; 0 when all succeeded.
  int Error() const { return error_; }

 private:
  void Note(bool succeeded);

  std::FILE* stream_;
  int error_ = 0;
};

}  // namespace fernwick
