#include "testing/programs/piped_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "testing/programs/child_process.h"

namespace fernwick::testing {
namespace {

std::string ProcessFile(pid_t process, const std::string& name) {
  return "/proc/" + std::to_string(process) + "/" + name;
}

}  // namespace

PipedProcess::PipedProcess(const std::vector<std::string>& command, const std::string& directory) {
  int input[2];
  int output[2];
  int left[2];
  if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0 || pipe(left) != 0) {
    std::abort();
  }
  process_ = fork();
  if (process_ == 0) {
    dup2(input[0], STDIN_FILENO);
    dup2(output[1], STDOUT_FILENO);
    close(left[0]);
    BecomeCommand(command, directory);
  }
  for (const int file : {input[0], output[1], left[1]}) close(file);
  input_ = input[1];
  output_ = output[0];
  left_ = left[0];
}

PipedProcess::~PipedProcess() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    Wait();
  }
  EndInput();
  close(output_);
  close(left_);
}

std::vector<pid_t> PipedProcess::Children() const {
  const auto id = std::to_string(process_);
  std::ifstream file(ProcessFile(process_, "task/" + id + "/children"));
  std::vector<pid_t> children;
  for (pid_t child = 0; file >> child;) children.push_back(child);
  return children;
}

void PipedProcess::Write(std::string_view text) const {
  while (!text.empty()) {
    const ssize_t count = write(input_, text.data(), text.size());
    if (count < 0) std::abort();
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void PipedProcess::EndInput() {
  if (input_ >= 0) close(input_);
  input_ = -1;
}

std::string PipedProcess::ReadLine() {
  for (;;) {
    if (const auto end = unread_.find('\n'); end != std::string::npos) {
      auto line = unread_.substr(0, end + 1);
      unread_.erase(0, end + 1);
      return line;
    }
    char piece[1 << 16];
    const ssize_t count = read(output_, piece, sizeof piece);
    if (count <= 0) return {};
    unread_.append(piece, static_cast<std::size_t>(count));
  }
}

std::string PipedProcess::Wait() {
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
  char byte;
  while (read(left_, &byte, 1) > 0) continue;
  return DescribeStatus(status);
}

std::size_t PeakMemory(pid_t process) {
  std::ifstream file(ProcessFile(process, "status"));
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("VmHWM:")) return std::strtoull(line.c_str() + 6, nullptr, 10);
  }
  std::abort();
}

}  // namespace fernwick::testing
