#include "driver/process.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <new>
#include <string_view>

namespace fernwick {
namespace {

int statusWhenOutOfMemory;

// What is in the buffer of standard output is not sent: half a plan is worse than none.
[[noreturn]] void EndOutOfMemory() {
  constexpr std::string_view Message = "fernwick: out of memory\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, Message.data(), Message.size());
  _exit(statusWhenOutOfMemory);
}

// Opened the wrong way round, so that using the stream fails as it would if it were closed.
void ReserveIfClosed(int descriptor, int mode) {
  if (fcntl(descriptor, F_GETFD) >= 0) return;
  // open returns the lowest free number, which is this one: those below are in use by now.
  [[maybe_unused]] const int reserved = open("/dev/null", mode);
}

}  // namespace

void PrepareProcess() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  ReserveIfClosed(STDIN_FILENO, O_WRONLY);
  ReserveIfClosed(STDOUT_FILENO, O_RDONLY);
  ReserveIfClosed(STDERR_FILENO, O_RDONLY);
}

void EndWhenOutOfMemory(int status) {
  statusWhenOutOfMemory = status;
  std::set_new_handler(EndOutOfMemory);
}

void LogAndAbort(Fault fault) {
  openlog("fernwick", 0, LOG_USER);
  syslog(LOG_CRIT, "%s", Describe(fault));
  std::abort();
}

}  // namespace fernwick
