// Atomic replace by rename: a file is written under a temporary name in the directory of its final
// one, flushed to the device and renamed, which the file system does in one step. A reader of the
// final name gets the old file or the new one, never a part. Costs one fsync for each file.

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

#include "lab/support/messages.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

constexpr char ExistsMessage[] = "there is a file of that name; --force replaces it";

// The permissions of a new file of this process.
mode_t NewFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return static_cast<mode_t>(0666) & ~mask;
}

// The file to write and its permissions, or why it cannot be written.
struct Target {
  std::string path;
  std::string error;
  mode_t mode = NewFileMode();
};

// The file that the path leads to, links followed; the path itself when there is none. A directory
// is no error here: renaming to it is.
Target Resolve(const std::string& path, IfExists ifExists) {
  if (ifExists == IfExists::Refuse) return {path, ExistingOutputError(path)};
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) return {path, std::strerror(errno)};
    const bool isLink = lstat(path.c_str(), &status) == 0;
    return {path, isLink ? "a link to a file that does not exist" : ""};
  }
  if (S_ISDIR(status.st_mode)) return {path, {}};
  if (!S_ISREG(status.st_mode)) return {path, "not a regular file"};
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr),
                                                             std::free);
  if (resolved == nullptr) return {path, std::strerror(errno)};
  constexpr mode_t Permissions = 0777;
  return {resolved.get(), {}, status.st_mode & Permissions};
}

// Blocks the signals that end a process, so that none leaves a temporary file; they arrive when
// this is destroyed.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, &before_);
  }
  ~BlockedSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_;
};

// As rename(2); with IfExists::Refuse it fails when `path` exists, in one step where the file
// system has one.
bool Rename(const std::string& newPath, const std::string& path, IfExists ifExists) {
  if (ifExists == IfExists::Refuse) {
    if (renameat2(AT_FDCWD, newPath.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
      return true;
    }
    if (errno != EINVAL && errno != ENOSYS) return false;
  }
  return std::rename(newPath.c_str(), path.c_str()) == 0;
}

// Writes all contents until that fails. Returns whether it did not; errno has the reason if it did.
bool WriteAll(int file, const WriteContents& write) {
  int error = 0;
  write([&](std::string_view bytes) {
    if (error == 0) error = WriteWhole(file, bytes);
  });
  errno = error;
  return error == 0;
}

// Writes and closes the temporary file and renames it to the target.
bool Finish(int file, const std::string& newPath, const Target& target, const WriteContents& write,
            IfExists ifExists) {
  const bool written = WriteAll(file, write) && fchmod(file, target.mode) == 0 && fsync(file) == 0;
  const int error = errno;
  const bool closed = close(file) == 0;
  if (!written) errno = error;
  return written && closed && Rename(newPath, target.path, ifExists);
}

}  // namespace

int SaveFile(const std::string& path, std::string_view text, const std::string& what) {
  const auto error = WriteOutputFile(path, text);
  if (!error.empty()) return PrintError(path, {{error}, LabStatus::OutputLost});
  ProcessConsole().WriteError(PrintableText(path) + ": " + what + " saved\n");
  return LabStatus::Done;
}

std::string ExistingOutputError(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) return {};
  if (stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) return ExistsMessage;
  return S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "not a regular file";
}

std::string WriteOutputFile(const std::string& path, std::string_view bytes, IfExists ifExists) {
  return WriteOutputFile(
      path, [&](const TextSink& sink) { sink(bytes); }, ifExists);
}

std::string WriteOutputFile(const std::string& path, const WriteContents& write,
                            IfExists ifExists) {
  const auto target = Resolve(path, ifExists);
  if (!target.error.empty()) return target.error;
  const BlockedSignals blocked;
  std::string newPath = target.path + ".XXXXXX";
  const int file = mkostemp(newPath.data(), O_CLOEXEC);
  if (file < 0) return std::strerror(errno);
  if (Finish(file, newPath, target, write, ifExists)) return {};
  const int error = errno;
  unlink(newPath.c_str());
  return error == EEXIST ? ExistsMessage : std::strerror(error);
}

}  // namespace fernwick::lab
