#pragma once

#include <string_view>

namespace fernwick::testing {

/// Replaces standard input by a pipe for as long as it lives. One at a time.
class StandardInputPipe {
 public:
  StandardInputPipe();
  ~StandardInputPipe();
  StandardInputPipe(const StandardInputPipe&) = delete;
  StandardInputPipe& operator=(const StandardInputPipe&) = delete;

  /// REQUIRES: no more than the pipe's capacity, 64 KiB, is unread.
  void Write(std::string_view bytes) const;

  /// Nothing more will be written.
  void End();

 private:
  int saved_;
  int writeEnd_;
};

}  // namespace fernwick::testing
