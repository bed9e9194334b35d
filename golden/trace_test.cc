// That a trace changes no byte of what the tool prints, over all golden cases.

#include <gtest/gtest.h>
#include <unistd.h>

#include "driver/run.h"
#include "lab/recordings/recording_file.h"
#include "testing/command_line.h"
#include "testing/observed_run.h"
#include "testing/programs/golden_case.h"

namespace fernwick {
namespace {

testing::ObservedRun RunOver(const Recording& recording, const Options& options, RunTrace* trace) {
  testing::TestConsole console;
  testing::LoggingRegistry registry(recording);
  const auto result = Run(options, registry, console, trace);
  return {result.status, result.fault, console.Flushes(), console.Error(), registry.Calls()};
}

TEST(Trace, ChangesNothingOfAnyGoldenCase) {
  ASSERT_EQ(chdir(FERNWICK_GOLDEN_DIRECTORY), 0);
  int count = 0;
  for (const auto& described : testing::ReadGoldenReplays("cases")) {
    SCOPED_TRACE(described.name);
    const auto recording = lab::LoadRecording(described.recording);
    if (!recording) continue;  // nothing runs
    const testing::CommandLine line(described.toolArguments);
    auto options = ParseOptions(line.Count(), line.Vector());
    for (const bool verbose : {options.verbose, true}) {  // as the case is, and with more to print
      options.verbose = verbose;
      RunTrace trace;
      EXPECT_EQ(RunOver(*recording, options, &trace), RunOver(*recording, options, nullptr));
    }
    ++count;
  }
  EXPECT_GE(count, 35);
}

}  // namespace
}  // namespace fernwick
