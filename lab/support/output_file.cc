#include "lab/support/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace fernwick::lab {
namespace {

// Where the bytes go, and what is wrong with that.
struct Target {
  std::string path;
  std::string error;
};

// The file at the path behind all links; the path itself when nothing is there. A directory is told
// when the file should take its place.
Target Resolve(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    return {path, errno == ENOENT ? "" : std::strerror(errno)};
  }
  if (S_ISDIR(status.st_mode)) return {path, {}};
  if (!S_ISREG(status.st_mode)) return {path, "not a regular file"};
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr),
                                                             std::free);
  if (resolved == nullptr) return {path, std::strerror(errno)};
  return {resolved.get(), {}};
}

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

bool WriteWhole(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::string WriteOutputFile(const std::string& path, std::string_view bytes) {
  const auto [target, fault] = Resolve(path);
  if (!fault.empty()) return fault;
  const SignalsHeldBack heldBack;
  std::string newPath = target + ".XXXXXX";
  const int file = mkostemp(newPath.data(), O_CLOEXEC);
  if (file < 0) return std::strerror(errno);
  if (Finish(file, newPath, target, bytes)) return {};
  const int error = errno;
  unlink(newPath.c_str());
  return std::strerror(error);
}

}  // namespace fernwick::lab
