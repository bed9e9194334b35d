#include "testing/test_console.h"

#include <utility>

namespace fernwick::testing {

void TestConsole::Log(const std::string& message) {
  messages_.push_back(message);
  error_ += LogLine(message);
}

std::string TestConsole::Output() const {
  std::string output;
  for (const auto& flush : flushes_) output += flush;
  return output;
}

std::string TestConsole::TakeError() {
  return std::exchange(error_, {});
}

int TestConsole::Send(std::string_view text) {
  if (outputFailure_ != 0) return outputFailure_;
  flushes_.emplace_back(text);
  return 0;
}

}  // namespace fernwick::testing
