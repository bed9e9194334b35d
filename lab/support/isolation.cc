#include "lab/support/isolation.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "lab/support/messages.h"

namespace fernwick::lab {
namespace {

[[noreturn]] void RunAsChild(const std::function<void()>& work) {
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  const int nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  work();
  _exit(0);
}

}  // namespace

int SignalThatEnds(const std::function<void()>& work) {
  std::fflush(nullptr);  // what waits in a buffer must not be printed by the child too
  const pid_t child = fork();
  if (child == 0) RunAsChild(work);
  if (child < 0) {
    PrintError("no process could be started: " + std::string(std::strerror(errno)));
    std::exit(LabStatus::NoProcess);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

}  // namespace fernwick::lab
