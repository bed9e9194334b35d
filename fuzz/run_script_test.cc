// The script fuzz/run, over a build directory whose programs are made up.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick::fuzz {
namespace {

namespace fs = std::filesystem;

using testing::ChildOutcome;
using testing::TemporaryDirectory;

// Writes down its limits and its input directories, then prints what a run without findings does.
constexpr char FindsNothing[] = R"sh(#!/bin/sh
for argument; do
  case $argument in
    -runs=* | -max_total_time=*) echo "$argument" ;;
    -*) ;;
    *) basename "$(dirname "$argument")" ;;
  esac
done > "$0.called"
echo '#5	DONE   cov: 12 ft: 34 corp: 3/9b lim: 4 exec/s: 0 rss: 31Mb'
echo 'Done 5 runs in 2 second(s)'
echo 'stat::number_of_executed_units: 5'
)sh";

constexpr char FindsSomething[] = R"sh(#!/bin/sh
echo '#2	NEW    cov: 7 ft: 8 corp: 1/1b lim: 4 exec/s: 0 rss: 31Mb'
echo 'fuzz: property violated: a thing'
echo "artifact_prefix='/x/'; Test unit written to /x/crash-1"
echo 'stat::number_of_executed_units: 2'
exit 77
)sh";

class FuzzRun : public ::testing::Test {
 protected:
  FuzzRun() {
    AddProgram("seed_maker", "#!/bin/sh\n");
    AddProgram("calm_fuzzer", FindsNothing);
    AddProgram("wild_fuzzer", FindsSomething);
  }

  ChildOutcome Run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), FERNWICK_SOURCE_DIRECTORY "/fuzz/run");
    return testing::RunChild(arguments, build_.Path());
  }

  std::string Path(const std::string& relative) const { return build_.Path() + "/" + relative; }

 private:
  void AddProgram(const std::string& name, const std::string& script) const {
    fs::permissions(build_.Write(name, script), fs::perms::owner_all);
  }

  TemporaryDirectory build_;
};

TEST_F(FuzzRun, RejectsWrongUsage) {
  const std::vector<std::string> rows[] = {{},          {"."},       {"absent", "1"},
                                           {".", "1s"}, {".", "-1"}, {".", "1", "calm", "cal"}};
  for (const auto& arguments : rows) {
    const auto outcome = Run(arguments);
    EXPECT_EQ(outcome.status, "64");
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_TRUE(outcome.standardError.ends_with("fuzz/regressions/TARGET.\n"))
        << outcome.standardError;
  }
}

TEST_F(FuzzRun, GoesOnFromTheCorpusForSoManySeconds) {
  const auto outcome = Run({".", "3", "calm"});
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardOutput, "calm: 5 executions\n");
  EXPECT_EQ(testing::ReadFile(Path("calm_fuzzer.called")), "-max_total_time=3\ncorpus\nseeds\n");
}

TEST_F(FuzzRun, RunsOnceOverTheSeedsIn0Seconds) {
  EXPECT_EQ(Run({".", "0", "calm"}).status, "0");
  EXPECT_EQ(testing::ReadFile(Path("calm_fuzzer.called")), "-runs=0\nseeds\n");
}

TEST_F(FuzzRun, RunsEveryTargetAlsoAfterOneThatFindsSomething) {
  const auto outcome = Run({".", "1", "wild", "calm"});
  EXPECT_EQ(outcome.status, "1");
  EXPECT_EQ(outcome.standardOutput, "wild: found something\ncalm: 5 executions\n");
  EXPECT_EQ(outcome.standardError,
            "fuzz: property violated: a thing\n"
            "artifact_prefix='/x/'; Test unit written to /x/crash-1\n"
            "stat::number_of_executed_units: 2\n");
  EXPECT_EQ(Run({".", "1"}).status, "1");
}

}  // namespace
}  // namespace fernwick::fuzz
