#include "platform/console.h"

#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>

#include "platform/file_system.h"

namespace fernwick {
namespace {

constexpr std::size_t LargeBuffer = std::size_t{1} << 16;

}  // namespace

void Console::Write(std::string_view text) {
  if (outputError_ != 0) return;
  buffer_ += text;
  if (buffer_.size() >= LargeBuffer) Flush();
}

void Console::Print(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  std::va_list again;
  va_copy(again, values);
  const int length = std::vsnprintf(nullptr, 0, format, values);
  va_end(values);
  std::string text(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  Write(text);
}

void Console::Flush() {
  if (buffer_.empty()) return;  // always so after a failure
  outputError_ = Send(buffer_);
  buffer_.clear();
}

int ProcessConsole::Send(std::string_view text) {
  return WriteWhole(STDOUT_FILENO, text);
}

// A failure to write standard error is ignored: there is nowhere to report it.
void ProcessConsole::WriteError(std::string_view text) {
  WriteWhole(STDERR_FILENO, text);
}

void ProcessConsole::Log(const std::string& message) {
  openlog("fernwick", LOG_PERROR, LOG_USER);
  syslog(LOG_ERR, "%s", message.c_str());
}

int StringConsole::Send(std::string_view text) {
  output_ += text;
  return 0;
}

void StringConsole::Log(const std::string& message) {
  error_ += LogLine(message);
}

std::string LogLine(std::string_view message) {
  std::string line = "fernwick: ";
  line += message;
  if (!message.ends_with('\n')) line += '\n';
  return line;
}

}  // namespace fernwick
