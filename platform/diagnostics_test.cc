#include "platform/diagnostics.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "platform/platform_log.h"
#include "testing/abnormal_end.h"
#include "testing/capture.h"

namespace fernwick {
namespace {

using testing::ExpectAbnormalEnd;
using testing::StandardErrorCapture;

TEST(WriteDiagnostic, WritesTheMessageAsItStands) {
  StandardErrorCapture capture;
  WriteDiagnostic("** Aborting\n");
  WriteDiagnostic("** 100% %s %n \u00E9\n");
  EXPECT_EQ(capture.TakeText(), "** Aborting\n** 100% %s %n \u00E9\n");
}

TEST(WriteDiagnostic, KeepsItsPlaceAmongTheLinesOfTheLog) {
  StandardErrorCapture capture;
  WriteDiagnostic("** first\n");
  PlatformLog("second");
  WriteDiagnostic("** third\n");
  EXPECT_EQ(capture.TakeText(), "** first\nfernwick: second\n** third\n");
}

/// Writes diagnostics to a standard error that keeps everything back until it is flushed, and ends
/// without flushing. A stream that was in use before may let the first of them through unasked.
[[noreturn]] void WriteThroughABuffer() {
  static std::array<char, 4096> buffer;
  std::setvbuf(stderr, buffer.data(), _IOFBF, buffer.size());
  WriteDiagnostic("** first\n");
  WriteDiagnostic("** Aborting\n");
  std::fputs("kept back", stderr);
  _exit(0);
}

TEST(WriteDiagnostic, IsFlushedAtOnce) {
  EXPECT_EXIT(WriteThroughABuffer(), ::testing::ExitedWithCode(0),
              ::testing::Eq("** first\n** Aborting\n"));
}

TEST(EndAbnormally, ReachesNeitherStandardOutputNorStandardError) {
  ExpectAbnormalEnd([] { EndAbnormally("a fault"); });
}

TEST(EndAbnormally, StaysSilentBehindALineOfTheLog) {
  ExpectAbnormalEnd(
      [] {
        PlatformLog("a line");
        EndAbnormally("a fault");
      },
      "fernwick: a line\n");
}

TEST(EndAbnormally, TellsAnObserverOfTheFault) {
  EXPECT_EXIT(
      {
        AbnormalEndObserver = [](const char* fault) {
          std::fputs(fault, stderr);
          _exit(3);
        };
        EndAbnormally("a fault");
      },
      ::testing::ExitedWithCode(3), ::testing::Eq("a fault"));
}

TEST(EndAbnormally, TakesPercentSignsAsText) {
  ExpectAbnormalEnd([] { EndAbnormally("%s %n"); });
}

}  // namespace
}  // namespace fernwick
