#include "platform/output.h"

#include <cerrno>
#include <cstdarg>

namespace fernwick {

void Output::Print(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  Note(std::vfprintf(stream_, format, values) >= 0);
  va_end(values);
}

void Output::Write(std::string_view text) {
  Note(std::fwrite(text.data(), 1, text.size(), stream_) == text.size());
}

void Output::Flush() {
  Note(std::fflush(stream_) == 0);
}

void Output::Note(bool succeeded) {
  if (!succeeded && error_ == 0) error_ = errno;
}

}  // namespace fernwick
