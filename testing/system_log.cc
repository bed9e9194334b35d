#include "testing/system_log.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>

namespace fernwick::testing {
namespace {

bool isShown = false;

}  // namespace

SystemLogOnStandardError::SystemLogOnStandardError() {
  isShown = true;
}

SystemLogOnStandardError::~SystemLogOnStandardError() {
  isShown = false;
}

}  // namespace fernwick::testing

// Replaces the C library's function, and calls it in turn.
extern "C" void syslog(int priority, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  if (fernwick::testing::isShown) {
    std::va_list shown;
    va_copy(shown, arguments);
    std::fputs("log: ", stderr);
    std::vfprintf(stderr, format, shown);
    std::fputc('\n', stderr);
    va_end(shown);
  }
  vsyslog(priority, format, arguments);
  va_end(arguments);
}
