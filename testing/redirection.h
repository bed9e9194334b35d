#pragma once

#include <string>

namespace fernwick::testing {

/// Sends what this process writes to a file descriptor, such as STDOUT_FILENO, elsewhere, until the
/// end of its scope. What waits in the streams of the C library is flushed at its beginning and
/// end.
class Redirection {
 public:
  /// Into memory.
  explicit Redirection(int descriptor);

  /// Into what `path` names, which exists.
  Redirection(int descriptor, const std::string& path);

  ~Redirection();
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

  /// Everything that has been written into memory.
  std::string Text() const;

  /// Ends the redirection. An expectation that fails before prints to standard output.
  void End();

 private:
  Redirection(int descriptor, int target);

  int descriptor_;
  int saved_;  // −1 from the end on
  int target_;
};

}  // namespace fernwick::testing
