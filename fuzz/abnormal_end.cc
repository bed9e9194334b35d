#include "fuzz/abnormal_end.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "fuzz/hold.h"
#include "fuzz/standard_error.h"

namespace fernwick::fuzz {
namespace {

// All of the seeds and of the inputs kept from earlier; then one of every so many.
bool IsTried() {
  constexpr unsigned long All = 1000;
  constexpr unsigned long Some = 32;
  static unsigned long count = 0;
  ++count;
  return count <= All || count % Some == 0;
}

// The fuzzing engine would take the signal for a finding.
[[noreturn]] void WorkWithoutHandler(const std::function<void()>& work) {
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  std::signal(SIGABRT, SIG_DFL);
  work();
  _exit(0);
}

// The timer of the fuzzing engine may interrupt the waiting.
int StatusOf(pid_t child) {
  int status = 0;
  pid_t ended = -1;
  do {
    ended = waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  Hold(ended == child, "a process can be started");
  return status;
}

}  // namespace

void HoldAbnormalEnd(const std::function<void()>& work, std::string_view fault) {
  if (!IsTried()) return;
  ForgetFault();
  const pid_t child = fork();
  if (child == 0) WorkWithoutHandler(work);
  const int status = StatusOf(child);
  Hold(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT, "what is a fault ends abnormally");
  Hold(LastFault() == fault, "an abnormal end tells its fault");
}

}  // namespace fernwick::fuzz
