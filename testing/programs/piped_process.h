#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace fernwick::testing {

/// A program that runs concurrently with the test, which writes its standard input and reads its
/// standard output. Its standard error is the test's own.
class PipedProcess {
 public:
  /// Starts it in `directory`. Aborts when no pipe can be created.
  PipedProcess(const std::vector<std::string>& command, const std::string& directory);

  /// Ends it when it has not been waited for.
  ~PipedProcess();
  PipedProcess(const PipedProcess&) = delete;
  PipedProcess& operator=(const PipedProcess&) = delete;

  pid_t Process() const { return process_; }

  /// The processes that it has started and not yet waited for.
  std::vector<pid_t> Children() const;

  /// Writes all of it; SIGPIPE ends this process when the program reads no more.
  void Write(std::string_view text) const;
  void EndInput();

  /// The next line that it writes, with its line feed; empty when no more can come.
  std::string ReadLine();

  /// Waits for its end, and then for that of every process that it has started. Returns how it
  /// ended itself, as ChildOutcome::status.
  std::string Wait();

 private:
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  int left_ = -1;  // at its end when no process of it is left
  std::string unread_;
};

/// The peak resident memory of a living process, in KiB. Aborts when there is no such process.
std::size_t PeakMemory(pid_t process);

}  // namespace fernwick::testing
