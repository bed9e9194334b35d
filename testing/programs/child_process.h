#pragma once

#include <string>
#include <vector>

namespace fernwick::testing {

/// How a program ended and what it wrote.
struct ChildOutcome {
  std::string status;  // the exit status in decimal, or the name of a signal such as "SIGABRT"
  std::string standardOutput;
  std::string standardError;

  friend bool operator==(const ChildOutcome&, const ChildOutcome&) = default;
};

/// Where a program's standard output goes.
enum class OutputTarget { Captured, Closed, FullDisk, BrokenPipe };

/// Runs a program to its end with an empty standard input, in `directory`. It leaves no core file.
ChildOutcome RunChild(const std::vector<std::string>& command, const std::string& directory,
                      OutputTarget target = OutputTarget::Captured);

/// Replaces this process by a program that runs in `directory`, leaves no core file and reacts to
/// SIGPIPE. Where it cannot run, ends with status 127 and a message on standard error.
[[noreturn]] void BecomeCommand(const std::vector<std::string>& command,
                                const std::string& directory);

/// Fails the test where the two differ.
void ExpectOutcome(const ChildOutcome& found, const ChildOutcome& expected);

/// The status of waitpid in the form of ChildOutcome::status.
std::string DescribeStatus(int status);

}  // namespace fernwick::testing
