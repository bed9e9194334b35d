// What the lab's `show` prints, whole, for recordings of golden/: as a text and in JSON. With
// FERNWICK_REWRITE_GOLDEN=1 in the environment the expectations are written instead of compared.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/child_process.h"
#include "testing/files.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::OutputTarget;

const fs::path Expectations = fs::path(FERNWICK_GOLDEN_DIRECTORY) / "shows";

testing::ChildOutcome Show(std::vector<std::string> arguments,
                           OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "show"});
  return testing::RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY, target);
}

struct ShowCase {
  std::string expectation;  // the file
  std::vector<std::string> arguments;
};

const std::vector<ShowCase> Cases = {
    // Ports below Thunderbolt controllers, some not listed, in several planes.
    {"typical.text", {"recordings/typical.registry.plist"}},
    {"typical.json", {"recordings/typical.registry.plist", "--json"}},
    {"typical-device-tree.text", {"recordings/typical.registry.plist", "--plane", "IODeviceTree"}},
    {"typical-device-tree.json",
     {"recordings/typical.registry.plist", "--plane", "IODeviceTree", "--json"}},
    // A Thunderbolt controller without a unique id, which ends the run.
    {"no-uid.text", {"recordings/no-uid.registry.plist"}},
    {"no-uid.json", {"recordings/no-uid.registry.plist", "--json"}},
    // No board identity.
    {"no-identity.text", {"recordings/no-identity.registry.plist"}},
    {"no-identity.json", {"recordings/no-identity.registry.plist", "--json"}},
};

TEST(Show, PrintsWhatIsExpected) {
  for (const auto& [expectation, arguments] : Cases) {
    const auto outcome = Show(arguments);
    EXPECT_EQ(outcome.status, "0") << expectation;
    EXPECT_EQ(outcome.standardError, "") << expectation;
    if (std::getenv("FERNWICK_REWRITE_GOLDEN") != nullptr) {
      std::ofstream(Expectations / expectation, std::ios::binary) << outcome.standardOutput;
    } else {
      EXPECT_EQ(outcome.standardOutput, testing::ReadFile(Expectations / expectation))
          << expectation;
    }
  }
}

TEST(Show, HasNoLeftOverExpectations) {
  for (const auto& file : fs::directory_iterator(Expectations)) {
    const auto isOfCase = [&](const ShowCase& each) {
      return each.expectation == file.path().filename();
    };
    EXPECT_TRUE(std::ranges::any_of(Cases, isOfCase)) << file.path();
  }
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
