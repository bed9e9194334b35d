#include "lab/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "lab/whole_write.h"

namespace fernwick::lab {
namespace {

// The permissions that a new file gets from the process.
mode_t NewFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return static_cast<mode_t>(0666) & ~mask;
}

// Holds back what would end the process between a new file and its name, until that is over.
class SignalsHeldBack {
 public:
  SignalsHeldBack() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, &before_);
  }
  ~SignalsHeldBack() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

 private:
  sigset_t before_;
};

// Fills the new file and gives it its name.
bool Finish(int file, const std::string& newPath, const std::string& path, std::string_view bytes) {
  const bool written =
      WriteWhole(file, bytes) && fchmod(file, NewFileMode()) == 0 && fsync(file) == 0;
  const int error = errno;
  const bool closed = close(file) == 0;
  if (!written) errno = error;
  return written && closed && std::rename(newPath.c_str(), path.c_str()) == 0;
}

}  // namespace

std::string WriteOutputFile(const std::string& path, std::string_view bytes) {
  const SignalsHeldBack heldBack;
  std::string newPath = path + ".XXXXXX";
  const int file = mkostemp(newPath.data(), O_CLOEXEC);
  if (file < 0) return std::strerror(errno);
  if (Finish(file, newPath, path, bytes)) return {};
  const int error = errno;
  unlink(newPath.c_str());
  return std::strerror(error);
}

}  // namespace fernwick::lab
