#include "driver/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <new>

#include "testing/sanitizers.h"

namespace fernwick {
namespace {

// Each runs in a child of its own, whose exit status tells what it found.

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

TEST(PrepareProcess, KeepsLaterFilesFromTakingAClosedStreamsPlace) {
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

TEST(EndWhenOutOfMemory, SaysSoAndEndsWithTheLastStatusGiven) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const auto exhaustMemory = [] {
    EndWhenOutOfMemory(66);
    EndWhenOutOfMemory(13);
    ::operator delete(::operator new(std::numeric_limits<std::ptrdiff_t>::max()));
  };
  EXPECT_EXIT(exhaustMemory(), ::testing::ExitedWithCode(13), "^fernwick: out of memory\n$");
}

}  // namespace
}  // namespace fernwick
