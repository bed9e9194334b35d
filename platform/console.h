#pragma once

#include <string>
#include <string_view>

namespace fernwick {

/// All output of a run goes here: standard output, standard error and the system log. A program
/// passes its own streams (ProcessConsole), a caller that wants the text passes strings
/// (StringConsole). Used by one thread at a time.
class Console {
 public:
  virtual ~Console() = default;

  /// Writes to standard output, in a buffer until Flush or until it is large. After the first write
  /// that fails nothing more is written there, so that what arrived is a prefix of the whole.
  void Write(std::string_view text);

  /// As Write, formatted as printf does. REQUIRES: less than 2^31 characters.
  [[gnu::format(printf, 2, 3)]] void Print(const char* format, ...);

  /// Sends what is in the buffer.
  void Flush();

  /// The error number of the first write to standard output that failed; 0 as long as none has.
  int OutputError() const { return outputError_; }

  /// Writes to standard error at once.
  virtual void WriteError(std::string_view text) = 0;

  /// Writes one line to the system log. It reaches standard error too, as "fernwick: MESSAGE".
  virtual void Log(const std::string& message) = 0;

 private:
  // Sends text to standard output, all of it or until it fails. Returns 0 or the error number.
  virtual int Send(std::string_view text) = 0;

  std::string buffer_;
  int outputError_ = 0;
};

/// The streams and the system log of this process.
class ProcessConsole : public Console {
 public:
  void WriteError(std::string_view text) override;
  void Log(const std::string& message) override;

 private:
  int Send(std::string_view text) override;
};

/// Collects everything in memory. Nothing fails.
class StringConsole : public Console {
 public:
  void WriteError(std::string_view text) override { error_ += text; }
  void Log(const std::string& message) override;

  /// What was written to standard output and flushed.
  const std::string& Output() const { return output_; }
  /// What was written to standard error, the lines of the system log included.
  const std::string& Error() const { return error_; }

 private:
  int Send(std::string_view text) override;

  std::string output_;
  std::string error_;
};

/// The line that a logged message is on standard error: "fernwick: MESSAGE" and a line feed, which
/// is not added to one that the message ends with.
std::string LogLine(std::string_view message);

}  // namespace fernwick
