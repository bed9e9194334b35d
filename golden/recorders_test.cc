// Checks that a trace does not change a byte of what the tool prints, over all golden cases.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "lab/recordings/recording_file.h"
#include "lab/support/abnormal_end.h"
#include "lab/support/captured_run.h"
#include "testing/programs/golden_case.h"

namespace fernwick {
namespace {

using lab::CapturedRun;

CapturedRun RunOver(const Recording& recording, const std::vector<std::string>& arguments,
                    RunRecorder* recorder) {
  RecordedRegistry registry(recording);
  return lab::RunCaptured(registry, arguments, recorder);
}

// The run as the case has it, and without and with more to print.
void ExpectSameWithRecorder(const Recording& recording, const std::vector<std::string>& arguments) {
  RunRecorder recorder;
  const auto faultWithout = lab::FaultThatEnds([&] { RunOver(recording, arguments, nullptr); });
  const auto faultWith = lab::FaultThatEnds([&] { RunOver(recording, arguments, &recorder); });
  EXPECT_EQ(faultWith, faultWithout);
  if (faultWithout) return;
  const auto without = RunOver(recording, arguments, nullptr);
  const auto with = RunOver(recording, arguments, &recorder);
  EXPECT_EQ(with.status, without.status);
  EXPECT_EQ(with.standardOutput, without.standardOutput);
  EXPECT_EQ(with.standardError, without.standardError);
}

TEST(Recorders, ChangeNothingOfAnyGoldenCase) {
  ASSERT_EQ(chdir(FERNWICK_GOLDEN_DIRECTORY), 0);
  int count = 0;
  for (const auto& described : testing::ReadGoldenReplays("cases")) {
    SCOPED_TRACE(described.name);
    const auto file = lab::LoadRecording(described.recording);
    if (!file.recording) continue;  // nothing runs
    auto arguments = described.toolArguments;
    ExpectSameWithRecorder(*file.recording, arguments);
    arguments.insert(arguments.begin(), "-v");
    ExpectSameWithRecorder(*file.recording, arguments);
    ++count;
  }
  EXPECT_GE(count, 35);
}

}  // namespace
}  // namespace fernwick
