#include "fuzz/standard_error.h"

#include <sys/mman.h>
#include <syslog.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include "fuzz/hold.h"

namespace fernwick::fuzz {
namespace {

// None of these ends before the last line was written: what runs at the end of the process may
// write, too.

std::string& Collected() {
  static auto* const text = new std::string;
  return *text;
}

ssize_t Collect(void*, const char* bytes, std::size_t size) {
  Collected().append(bytes, size);
  return static_cast<ssize_t>(size);
}

void CollectStandardError() {
  cookie_io_functions_t functions{};
  functions.write = Collect;
  stderr = fopencookie(nullptr, "w", functions);
  std::setvbuf(stderr, nullptr, _IONBF, 0);
}

using FaultLine = std::array<char, 256>;

// Shared with the processes that this one starts: those end right after they have told their fault.
FaultLine& Fault() {
  static void* const page =
      mmap(nullptr, sizeof(FaultLine), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  Hold(page != MAP_FAILED, "there is memory to share");
  return *static_cast<FaultLine*>(page);
}

const char* logName = "";
bool logsToStandardError = false;

}  // namespace

std::string TakeStandardError() {
  static const bool isCollected = (CollectStandardError(), true);
  return isCollected ? std::exchange(Collected(), {}) : std::string();
}

std::string LastFault() {
  return Fault().data();
}

void ForgetFault() {
  Fault().front() = '\0';
}

}  // namespace fernwick::fuzz

// In place of those of the C library, which would look for a system log for every line.

extern "C" void openlog(const char* name, int options, int) {
  fernwick::fuzz::logName = name;
  fernwick::fuzz::logsToStandardError = (options & LOG_PERROR) != 0;
}

extern "C" void syslog(int, const char* format, ...) {
  using namespace fernwick::fuzz;
  std::va_list values;
  va_start(values, format);
  if (logsToStandardError) {
    std::fprintf(stderr, "%s: ", logName);
    std::vfprintf(stderr, format, values);
    std::fputs("\n", stderr);
  } else {
    std::vsnprintf(Fault().data(), Fault().size(), format, values);
  }
  va_end(values);
}
