// `show` of the lab as a process. What it prints, whole, is in the golden cases of golden/shows.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/child_process.h"

namespace fernwick {
namespace {

using testing::OutputTarget;

testing::ChildOutcome Show(std::vector<std::string> arguments,
                           OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "show"});
  return testing::RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY, target);
}

TEST(Show, ThatCannotBePrintedIsNoSuccess) {
  const std::string error =
      "fernwick-lab: standard output could not be written: No space left on device\n";
  for (const char* form : {"--json", "--plane=IOService"}) {
    const auto outcome = Show({"recordings/typical.registry.plist", form}, OutputTarget::FullDisk);
    EXPECT_EQ(outcome.status, "74");
    EXPECT_EQ(outcome.standardError, error);
  }
}

}  // namespace
}  // namespace fernwick
