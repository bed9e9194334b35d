#include <gtest/gtest.h>

#include "lab/verbs.h"
#include "testing/capture.h"
#include "testing/command_line.h"
#include "testing/programs/many_computers.h"
#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

struct Replayed {
  int status;
  std::string standardError;
};

// Without the program's own name: what follows the verb.
Replayed ReplayOf(const testing::CommandLine& line) {
  testing::StandardErrorCapture errors;
  const int status = ReplayVerb(line.Count() - 1, line.Vector() + 1).status;
  return {status, errors.TakeText()};
}

constexpr char Empty[] =
    "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict/></dict>";

TEST(Replay, RunsTheToolUnderItsOwnName) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("empty.registry.plist", Empty);
  const auto replayed = ReplayOf({path, "--no"});
  EXPECT_EQ(replayed.status, 2);
  EXPECT_EQ(replayed.standardError, "fernwick: unrecognized option '--no'\n");
}

TEST(Replay, ReturnsTheStatusOfTheTool) {
  const testing::TemporaryDirectory directory;
  const auto replayed = ReplayOf({directory.Write("empty.registry.plist", Empty)});
  EXPECT_EQ(replayed.status, 13);
  EXPECT_EQ(replayed.standardError,
            "fernwick: Error reading plist: No files to support boardID: (null)\n"
            "fernwick: Unexpected format for config plist file.  Aborting\n");
}

TEST(Replay, ReturnsAFaultOfTheTool) {
  const testing::TemporaryDirectory directory;
  const testing::CommandLine line = {
      directory.Write("faulty.registry.plist", testing::FaultyRecording())};
  testing::StandardErrorCapture errors;
  const auto end = ReplayVerb(line.Count() - 1, line.Vector() + 1);
  EXPECT_EQ(end.fault, Fault::BareSwitch);
  EXPECT_EQ(errors.TakeText(), "");
}

TEST(Replay, TwiceInOneProcessHasTheSameResult) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("empty.registry.plist", Empty);
  const auto first = ReplayOf({path, "-X", "--no"});
  const auto second = ReplayOf({path, "-X", "--no"});
  EXPECT_EQ(first.status, second.status);
  EXPECT_EQ(first.standardError, second.standardError);
}

TEST(Replay, RefusesARecordingThatBreaksARule) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("bad.registry.plist", "<dict/>");
  const auto replayed = ReplayOf({path});
  EXPECT_EQ(replayed.status, 65);
  EXPECT_EQ(replayed.standardError,
            "fernwick-lab: " + path + ": \"Recording Version\" is missing\n");
}

TEST(Replay, RefusesARecordingThatCannotBeRead) {
  const testing::TemporaryDirectory directory;
  const auto replayed = ReplayOf({directory.Path() + "/none"});
  EXPECT_EQ(replayed.status, 66);
  EXPECT_EQ(replayed.standardError,
            "fernwick-lab: " + directory.Path() + "/none: No such file or directory\n");
}

TEST(Replay, ReadsTheRecordingFromStandardInput) {
  testing::StandardInputPipe input;
  input.Write(Empty);
  input.End();
  EXPECT_EQ(ReplayOf({"-"}).status, 13);
  EXPECT_EQ(ReplayOf({"-"}).standardError, "fernwick-lab: standard input: the file is empty\n");
}

TEST(Replay, NeedsARecordingBeforeTheToolsArguments) {
  const std::string help = "; see fernwick-lab replay --help\n";
  EXPECT_EQ(ReplayOf({}).status, 64);
  EXPECT_EQ(ReplayOf({}).standardError, "fernwick-lab: RECORDING or --host is required" + help);
  EXPECT_EQ(ReplayOf({"-v"}).status, 64);
  EXPECT_EQ(ReplayOf({"-v"}).standardError,
            "fernwick-lab: there is no option \"-v\" before RECORDING" + help);
  EXPECT_EQ(ReplayOf({"--hots", "-v"}).standardError,
            "fernwick-lab: there is no option \"--hots\" before RECORDING (did you mean "
            "\"--host\"?)" +
                help);
}

}  // namespace
}  // namespace fernwick::lab
