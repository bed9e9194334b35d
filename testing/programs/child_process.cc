#include "testing/programs/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fernwick::testing {
namespace {

std::string ReadAll(std::FILE* file) {
  std::string text;
  std::rewind(file);
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
    text.push_back(static_cast<char>(c));
  }
  std::fclose(file);
  return text;
}

// REQUIRES: runs in the child.
void RedirectOutput(OutputTarget target, int captured) {
  int pipeEnds[2] = {-1, -1};
  switch (target) {
    case OutputTarget::Captured: dup2(captured, STDOUT_FILENO); break;
    case OutputTarget::Closed: close(STDOUT_FILENO); break;
    case OutputTarget::FullDisk: dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); break;
    case OutputTarget::BrokenPipe:
      if (pipe(pipeEnds) != 0) std::_Exit(126);
      close(pipeEnds[0]);
      dup2(pipeEnds[1], STDOUT_FILENO);
      break;
  }
}

}  // namespace

void BecomeCommand(const std::vector<std::string>& command, const std::string& directory) {
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGHUP}) std::signal(number, SIG_DFL);
  std::vector<char*> arguments;
  for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  if (chdir(directory.c_str()) == 0) execvp(arguments.front(), arguments.data());
  std::perror(command.front().c_str());
  std::_Exit(127);
}

void ExpectOutcome(const ChildOutcome& found, const ChildOutcome& expected) {
  EXPECT_EQ(found.status, expected.status);
  EXPECT_EQ(found.standardOutput, expected.standardOutput);
  EXPECT_EQ(found.standardError, expected.standardError);
}

std::string DescribeStatus(int status) {
  if (WIFEXITED(status)) return std::to_string(WEXITSTATUS(status));
  return "SIG" + std::string(sigabbrev_np(WTERMSIG(status)));
}

ChildOutcome RunChild(const std::vector<std::string>& command, const std::string& directory,
                      OutputTarget target) {
  std::FILE* output = std::tmpfile();
  std::FILE* error = std::tmpfile();
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(fileno(error), STDERR_FILENO);
    RedirectOutput(target, fileno(output));
    BecomeCommand(command, directory);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {DescribeStatus(status), ReadAll(output), ReadAll(error)};
}

}  // namespace fernwick::testing
