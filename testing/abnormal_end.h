#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

namespace fernwick::testing {

/// Runs `work` with "not flushed" waiting in the buffer of standard output, which goes to `output`,
/// and leaves no core file.
template <typename Work>
void RunWithOutputWaiting(Work work, std::FILE* output) {
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  dup2(fileno(output), STDOUT_FILENO);
  std::fputs("not flushed", stdout);
  work();
}

/// Holds `work`, run in a process of its own, to an end by SIGABRT with exactly `standardError` on
/// standard error and nothing on standard output, not even what waits there in its buffer.
template <typename Work>
void ExpectAbnormalEnd(Work work, const std::string& standardError = "") {
  std::FILE* const output = std::tmpfile();
  EXPECT_EXIT(RunWithOutputWaiting(work, output), ::testing::KilledBySignal(SIGABRT),
              ::testing::Eq(standardError));
  struct stat status;
  EXPECT_EQ(fstat(fileno(output), &status), 0);
  EXPECT_EQ(status.st_size, 0);
  std::fclose(output);
}

}  // namespace fernwick::testing
