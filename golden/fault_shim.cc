// Fault injection, preloaded into a program by faults_test.cc: replaces functions of the C library,
// and changes a file or makes a call fail at a chosen moment.
//
//   FERNWICK_FAULT=MOMENT:ACTION:NAME   when a file whose path ends in NAME comes to MOMENT (open,
//                                       fstat, read, reread), ACTION happens to that path first
//   FERNWICK_FAILING_ALLOCATION=N       the Nth allocation fails
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" void* __libc_malloc(std::size_t size);

namespace {

struct Fault {
  std::string_view moment, action, name;
};

// Removes the text up to the next ":" and the ":" from the front of `text`, and returns the former.
std::string_view SplitFront(std::string_view& text) {
  const auto field = text.substr(0, text.find(':'));
  text.remove_prefix(field.size() < text.size() ? field.size() + 1 : text.size());
  return field;
}

Fault ChosenFault() {
  const char* value = std::getenv("FERNWICK_FAULT");
  std::string_view text = value == nullptr ? "" : value;
  return {SplitFront(text), SplitFront(text), text};
}

char openedPath[4096];  // of the file that the fault is about
int openedFile = -1;
unsigned readCount;

void AppendBlanks(const char* path) {
  char blanks[4096];
  for (char& blank : blanks) blank = ' ';
  const int file = open(path, O_WRONLY | O_APPEND);
  for (int i = 0; i < 64; ++i) {
    if (write(file, blanks, sizeof blanks) != sizeof blanks) std::abort();
  }
  close(file);
}

void Enlarge(const char* path) {
  if (truncate(path, (off_t{1} << 30) + 1) != 0) std::abort();
}

void Halve(const char* path) {
  struct stat status;
  if (stat(path, &status) != 0 || truncate(path, status.st_size / 2) != 0) std::abort();
}

// Changes the file. Where the call itself is to fail, sets errno and returns false.
bool Act(std::string_view action, const char* path) {
  if (action == "empty" && truncate(path, 0) != 0) std::abort();
  if (action == "halve") Halve(path);
  if (action == "enlarge") Enlarge(path);
  if (action == "grow") AppendBlanks(path);
  if (action == "remove" || action == "fifo" || action == "directory") {
    if (unlink(path) != 0) std::abort();
    if (action == "fifo" && mkfifo(path, 0600) != 0) std::abort();
    if (action == "directory" && mkdir(path, 0700) != 0) std::abort();
  }
  if (action == "forbid") errno = EACCES;
  if (action == "fail") errno = EIO;
  if (action == "interrupt") errno = EINTR;
  return action != "forbid" && action != "fail" && action != "interrupt";
}

// Whether the call may go on.
bool ApplyFaultAt(std::string_view moment, const char* path) {
  static bool acted = false;
  const Fault fault = ChosenFault();
  if (acted || fault.moment != moment) return true;
  acted = true;
  return Act(fault.action, path);
}

bool IsChosenFile(std::string_view path) {
  const Fault fault = ChosenFault();
  return !fault.name.empty() && path.ends_with(fault.name);
}

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const bool isChosen = openedFile < 0 && openedPath[0] == '\0' && IsChosenFile(path);
  if (isChosen) {
    std::string_view(path).copy(openedPath, sizeof openedPath - 1);
    if (!ApplyFaultAt("open", path)) return -1;
  }
  const int file = Real<int(const char*, int, ...)>("open")(path, flags, mode);
  if (isChosen) openedFile = file;
  return file;
}

int fstat(int file, struct stat* status) noexcept {
  if (file >= 0 && file == openedFile && !ApplyFaultAt("fstat", openedPath)) return -1;
  return Real<int(int, struct stat*)>("fstat")(file, status);
}

ssize_t read(int file, void* bytes, std::size_t size) {
  if (file >= 0 && file == openedFile) {
    ++readCount;
    if (!ApplyFaultAt(readCount == 1 ? "read" : "reread", openedPath)) return -1;
  }
  return Real<ssize_t(int, void*, std::size_t)>("read")(file, bytes, size);
}

void* malloc(std::size_t size) {
  static std::atomic<std::uint64_t> count;
  static const char* const chosen = std::getenv("FERNWICK_FAILING_ALLOCATION");
  if (chosen != nullptr && ++count == std::strtoull(chosen, nullptr, 10)) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_malloc(size);
}
}
