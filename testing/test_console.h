#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/console.h"

namespace fernwick::testing {

/// A console that keeps what is written to it and where it was flushed, and whose standard output
/// can fail.
class TestConsole : public Console {
 public:
  void WriteError(std::string_view text) override { error_ += text; }
  void Log(const std::string& message) override;

  /// What each flush sent out, in order. REQUIRES: no piece was larger than 64 KiB, which a console
  /// sends out by itself.
  const std::vector<std::string>& Flushes() const { return flushes_; }

  /// Everything that was flushed.
  std::string Output() const;

  /// What was written to standard error, the lines of the system log included.
  const std::string& Error() const { return error_; }

  /// The error since the last call of this function.
  std::string TakeError();

  /// The messages of the system log.
  const std::vector<std::string>& Messages() const { return messages_; }

  /// From now on sending to standard output fails with this error number; 0: it works again.
  void FailOutput(int error) { outputFailure_ = error; }

 private:
  int Send(std::string_view text) override;

  std::vector<std::string> flushes_;
  std::vector<std::string> messages_;
  std::string error_;
  int outputFailure_ = 0;
};

}  // namespace fernwick::testing
