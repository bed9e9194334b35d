#include "lab/support/captured_run.h"

#include <gtest/gtest.h>

#include "registry/recorded_registry.h"
#include "testing/capture.h"
#include "testing/computer.h"

namespace fernwick::lab {
namespace {

TEST(CapturedRun, HoldsAllThatTheToolPrints) {
  testing::Computer computer;
  computer.SetBoard("Zed-42", 3);
  RecordedRegistry registry(computer.Recorded());
  testing::StandardErrorCapture own;
  const auto run = RunCaptured(registry, {"-v", "-p", "/nowhere"}, nullptr);
  EXPECT_EQ(own.TakeText(), "");
  EXPECT_EQ(run.status, 13);
  EXPECT_EQ(run.standardOutput,
            "\n"
            "Board ID:                42\n"
            "Board ID String:         Zed-42\n"
            "Board Revision:          3\n"
            "\n"
            "Personalities Directory: /nowhere/Fernwick/\n"
            "\n\n"
            "No supported hardware on this platform?\n"
            "\n\n"
            "\n\nExit status: 13\n");
  EXPECT_EQ(run.standardError,
            "fernwick: Error reading plist: No files to support boardID: Zed-42\n"
            "fernwick: Unexpected format for config plist file.  Aborting\n");
}

TEST(CapturedRun, GivesStandardErrorBack) {
  testing::Computer computer;
  RecordedRegistry registry(computer.Recorded());
  RunCaptured(registry, {}, nullptr);
  testing::StandardErrorCapture errors;
  std::fputs("mine", stderr);
  EXPECT_EQ(errors.TakeText(), "mine");
}

TEST(CapturedRun, TellsARecorder) {
  testing::Computer computer;
  computer.SetBoard("Zed-42", 3);
  RecordedRegistry registry(computer.Recorded());
  RunRecorder recorder;
  RunCaptured(registry, {"--bypassVersion"}, &recorder);
  EXPECT_TRUE(recorder.bypassesVersionCheck);
  ASSERT_TRUE(recorder.identity.has_value());
  EXPECT_EQ(recorder.identity->boardIdString, "Zed-42");
  EXPECT_EQ(recorder.identity->boardRevision, 3);
}

}  // namespace
}  // namespace fernwick::lab
