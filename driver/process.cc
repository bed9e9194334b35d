#include "driver/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace fernwick {
namespace {

// Opened the wrong way round, so that using the stream fails as it would if it were closed.
void ReserveIfClosed(int descriptor, int mode) {
  if (fcntl(descriptor, F_GETFD) >= 0) return;
  // The lowest free number is taken, which is this one: those below have been seen to.
  [[maybe_unused]] const int reserved = open("/dev/null", mode);
}

}  // namespace

void PrepareProcess() {
  std::signal(SIGPIPE, SIG_IGN);
  ReserveIfClosed(STDIN_FILENO, O_WRONLY);
  ReserveIfClosed(STDOUT_FILENO, O_RDONLY);
  ReserveIfClosed(STDERR_FILENO, O_RDONLY);
}

}  // namespace fernwick
