#include "driver/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>

#include "platform/console.h"
#include "testing/sanitizers.h"
#include "testing/system_log.h"

namespace fernwick {
namespace {

// Each runs in a child process, whose exit status is the result.

TEST(PrepareProcess, TurnsABrokenPipeIntoAFailedWrite) {
  const auto writeToBrokenPipe = [] {
    PrepareProcess();
    int ends[2];
    if (pipe(ends) != 0) std::_Exit(1);
    close(ends[0]);
    std::_Exit(write(ends[1], "x", 1) == -1 && errno == EPIPE ? 0 : 2);
  };
  EXPECT_EXIT(writeToBrokenPipe(), ::testing::ExitedWithCode(0), "^$");
}

TEST(PrepareProcess, KeepsLaterFilesFromUsingAClosedStreamsDescriptor) {
  const auto openBehindClosedStreams = [] {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(stream);
    PrepareProcess();
    const bool writingFails = write(STDOUT_FILENO, "x", 1) == -1 && errno == EBADF;
    std::_Exit(open("/dev/null", O_WRONLY) > STDERR_FILENO && writingFails ? 0 : 1);
  };
  EXPECT_EXIT(openBehindClosedStreams(), ::testing::ExitedWithCode(0), "^$");
}

TEST(PrepareProcess, LeavesOpenStreamsAsTheyAre) {
  const auto writeToStandardError = [] {
    PrepareProcess();
    std::_Exit(write(STDERR_FILENO, "here", 4) == 4 ? 0 : 1);
  };
  EXPECT_EXIT(writeToStandardError(), ::testing::ExitedWithCode(0), "^here$");
}

TEST(EndWhenOutOfMemory, ReportsItAndEndsWithTheStatusSetLast) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const auto exhaustMemory = [] {
    EndWhenOutOfMemory(66);
    EndWhenOutOfMemory(13);
    ::operator delete(::operator new(std::numeric_limits<std::ptrdiff_t>::max()));
  };
  EXPECT_EXIT(exhaustMemory(), ::testing::ExitedWithCode(13), "^fernwick: out of memory\n$");
}

// Runs `work` in a child without a core file, with its standard output going to `output`.
template <typename Work>
void RunInto(std::FILE* output, Work work) {
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  dup2(fileno(output), STDOUT_FILENO);
  work();
}

// Expects an end of a child that runs `work`, with exactly `standardError` on standard error and
// nothing on standard output, neither by the work nor at the end of the process.
template <typename Work, typename End>
void ExpectEnd(Work work, End end, const std::string& standardError) {
  std::FILE* const output = std::tmpfile();
  EXPECT_EXIT(RunInto(output, work), end, ::testing::Eq(standardError));
  struct stat status;
  EXPECT_EQ(fstat(fileno(output), &status), 0);
  EXPECT_EQ(status.st_size, 0);
  std::fclose(output);
}

TEST(EndWhenOutOfMemory, SendsNothingOfWhatWaits) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const auto exhaustMemory = [] {
    EndWhenOutOfMemory(71);
    ProcessConsole console;
    console.Write("half a plan");
    ::operator delete(::operator new(std::numeric_limits<std::ptrdiff_t>::max()));
  };
  ExpectEnd(exhaustMemory, ::testing::ExitedWithCode(71), "fernwick: out of memory\n");
}

constexpr Fault AllFaults[] = {Fault::MissingUid, Fault::BareSwitch};

TEST(LogAndAbort, AbortsWithNothingOnTheStreams) {
  for (const auto fault : AllFaults) {
    const auto end = [fault] {
      ProcessConsole console;
      console.Write("half a plan");
      LogAndAbort(fault);
    };
    ExpectEnd(end, ::testing::KilledBySignal(SIGABRT), "");
  }
}

// Also after a line that the run logged, which reached standard error.
TEST(LogAndAbort, ReportsTheFaultInTheSystemLogOnly) {
  for (const auto fault : AllFaults) {
    const auto end = [fault] {
      ProcessConsole().Log("an earlier line");
      const testing::SystemLogOnStandardError shown;
      LogAndAbort(fault);
    };
    ExpectEnd(end, ::testing::KilledBySignal(SIGABRT),
              "fernwick: an earlier line\nlog: " + std::string(Describe(fault)) + "\n");
  }
}

TEST(LogAndAbort, NamesEachFaultByALineOfItsOwn) {
  EXPECT_STREQ(Describe(Fault::MissingUid), "a Thunderbolt controller has no UID");
  EXPECT_STREQ(Describe(Fault::BareSwitch), "a boot argument is a switch name without a value");
}

}  // namespace
}  // namespace fernwick
