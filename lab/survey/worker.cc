#include "lab/survey/worker.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "driver/process.h"
#include "lab/support/output_file.h"

namespace fernwick::lab {
namespace {

constexpr int OutOfMemoryStatus = 71;

// The kinds of frames that a worker sends.
constexpr char Begun = 'b';
constexpr char Noted = 'n';
constexpr char Answered = 'a';

// Reads on until a frame is whole. None at the end of the pipe.
std::optional<Frame> AwaitFrame(int file, FrameReader& reader) {
  char piece[4096];
  for (;;) {
    if (auto frame = reader.Next()) return frame;
    const ssize_t count = read(file, piece, sizeof piece);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return std::nullopt;
    reader.Append({piece, static_cast<std::size_t>(count)});
  }
}

void LeaveStandardStreams() {
  const int nowhere = open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
  if (nowhere > STDERR_FILENO) close(nowhere);
}

// When memory is short, a worker goes before the parent, which would take all results with it. One
// may always offer oneself.
void GoFirstWhenMemoryIsShort() {
  const int file = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
  if (file < 0) return;
  WriteWhole(file, "1000");
  close(file);
}

// What a terminal sends to all its processes is the parent's to answer: with it the worker ends.
void EndWithParent(pid_t parent) {
  for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) std::signal(number, SIG_IGN);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(0);
}

[[noreturn]] void WorkOn(const Work& work, int requests, int answers) {
  const auto send = [answers](char kind, std::string_view bytes) {
    if (!WriteWhole(answers, Framed(kind, bytes))) _exit(0);
  };
  FrameReader reader;
  while (const auto request = AwaitFrame(requests, reader)) {
    send(Begun, "");
    send(Answered, work(request->bytes, [&](std::string_view note) { send(Noted, note); }));
  }
  _exit(0);
}

[[noreturn]] void LiveAsWorker(const Work& work, pid_t parent, int requests, int answers) {
  EndWithParent(parent);
  LeaveStandardStreams();
  GoFirstWhenMemoryIsShort();
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  EndWhenOutOfMemory(OutOfMemoryStatus);
  WorkOn(work, requests, answers);
}

std::string DescribeEnd(int status) {
  if (WIFSIGNALED(status)) {
    const char* name = sigabbrev_np(WTERMSIG(status));
    return name != nullptr ? "SIG" + std::string(name)
                           : "signal " + std::to_string(WTERMSIG(status));
  }
  if (WEXITSTATUS(status) == OutOfMemoryStatus) return "out of memory";
  return "exit status " + std::to_string(WEXITSTATUS(status));
}

struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;

  bool Open() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    readEnd = ends[0];
    writeEnd = ends[1];
    return true;
  }

  void Close() const {
    if (readEnd < 0) return;
    const int error = errno;
    close(readEnd);
    close(writeEnd);
    errno = error;
  }
};

}  // namespace

std::unique_ptr<Worker> Worker::Start(const Work& work,
                                      std::span<const std::unique_ptr<Worker>> others) {
  const pid_t parent = getpid();
  Pipe requests;
  Pipe answers;
  const pid_t process = requests.Open() && answers.Open() ? fork() : -1;
  if (process < 0) {
    requests.Close();
    answers.Close();
    return nullptr;
  }
  if (process == 0) {
    for (const auto& other : others) {
      close(other->requests_);
      close(other->answers_);
    }
    close(requests.writeEnd);
    close(answers.readEnd);
    LiveAsWorker(work, parent, requests.readEnd, answers.writeEnd);
  }
  close(requests.readEnd);
  close(answers.writeEnd);
  return std::unique_ptr<Worker>(new Worker(process, requests.writeEnd, answers.readEnd));
}

Worker::~Worker() {
  if (end_.empty()) Reap();
  close(requests_);
  close(answers_);
}

void Worker::Give(std::string_view path) {
  hasBegun_ = false;
  note_.clear();
  WriteWhole(requests_, Framed('r', path));
}

Worker::Progress Worker::Read() {
  char piece[1 << 16];
  const ssize_t count = read(answers_, piece, sizeof piece);
  if (count < 0 && errno == EINTR) return Progress::Underway;
  if (count <= 0) {
    Reap();
    return Progress::Ended;
  }
  reader_.Append({piece, static_cast<std::size_t>(count)});
  return TakeFrames() ? Progress::Answered : Progress::Underway;
}

bool Worker::TakeFrames() {
  bool answered = false;
  while (auto frame = reader_.Next()) {
    switch (frame->kind) {
      case Begun: hasBegun_ = true; break;
      case Noted: note_ = std::move(frame->bytes); break;
      default: answer_ = std::move(frame->bytes); answered = true;
    }
  }
  return answered;
}

// One that has closed its pipe and lives on is ended; how one ends that is about to stays the same.
void Worker::Reap() {
  kill(process_, SIGKILL);
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) continue;
  end_ = DescribeEnd(status);
}

}  // namespace fernwick::lab
