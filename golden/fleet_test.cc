// The scripts of examples/fleet: a survey in tasks, by GNU parallel and as Slurm calls them.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;

class Fleet : public ::testing::Test {
 protected:
  Fleet() {
    testing::WriteManyComputers(directory_, 50, 7);
    std::filesystem::copy(FERNWICK_SOURCE_DIRECTORY "/examples/fleet",
                          directory_.Path() + "/fleet");
  }

  // In the directory, with the built programs first on the PATH. GNU parallel has a directory of
  // its own for what it remembers.
  ChildOutcome Shell(const std::string& command) const {
    return testing::RunChild({"/bin/sh", "-c",
                              "PATH=$PWD/bin:" FERNWICK_BUILD_DIRECTORY
                              ":$PATH; mkdir -p .parallel; export PARALLEL_HOME=$PWD/.parallel; " +
                                  command},
                             directory_.Path());
  }

  // From now on, a program of the name of the lab that kills the task of a shard, with half of the
  // result written.
  void KillTaskOf(const std::string& shard) const {
    directory_.Write("bin/fernwick-lab",
                     "#!/bin/sh\n"
                     "case \"$*\" in\n"
                     "  *'--shard " +
                         shard +
                         "/'*) " FERNWICK_LAB_PROGRAM
                         " \"$@\" | head -c 2000; kill -KILL $PPID ;;\n"
                         "  *) exec " FERNWICK_LAB_PROGRAM
                         " \"$@\" ;;\n"
                         "esac\n");
    Shell("chmod +x bin/fernwick-lab");
  }

  void ExpectMergeAsOneRun() const {
    testing::ExpectOutcome(Shell("fernwick-lab merge results/*.ndjson"),
                           Shell("fernwick-lab survey -p payload computers"));
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(Fleet, OnGnuParallelIsMergedAfterAKilledTaskIsRepeated) {
  const std::string run = "parallel --sshlogin : --workdir . --joblog jobs.log ";
  const std::string tasks = "sh fleet/task {} 5 ::: 1 2 3 4 5";
  KillTaskOf("3");
  EXPECT_EQ(Shell(run + tasks).status, "1");
  EXPECT_EQ(Shell("sh fleet/missing 5").standardOutput, "3\n");
  EXPECT_EQ(Shell("fernwick-lab merge results/*.ndjson").standardError,
            "fernwick-lab: shard 3 of 5 is missing\n");
  std::filesystem::remove_all(directory_.Path() + "/bin");
  std::filesystem::remove(directory_.Path() + "/results/4.ndjson");  // must not be made again
  const auto repeated = Shell(run + "--resume-failed " + tasks);
  EXPECT_EQ(repeated.status, "0") << repeated.standardError;
  EXPECT_EQ(Shell("sh fleet/missing 5").standardOutput, "4\n");
  Shell("sh fleet/task 4 5");
  ExpectMergeAsOneRun();
}

TEST_F(Fleet, AsAJobArrayHasATaskForEachIndex) {
  for (const std::string index : {"2", "1", "3"}) {
    const auto task = Shell("SLURM_ARRAY_TASK_ID=" + index + " sh fleet/survey.sbatch 3");
    EXPECT_EQ(task.status, "0") << task.standardError;
  }
  EXPECT_EQ(Shell("sh fleet/missing 5").standardOutput, "4,5\n");
  ExpectMergeAsOneRun();
}

}  // namespace
}  // namespace fernwick
