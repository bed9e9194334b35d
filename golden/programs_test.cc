// The programs as processes: what can only be observed at the end of a process.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/host_tree.h"
#include "testing/programs/child_process.h"
#include "testing/programs/host_namespace.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::OutputTarget;
using testing::RunChild;

const std::string Recording = "../examples/ports-below-thunderbolt.registry.plist";
const std::string Payload = "../examples/payload";

constexpr char Usage[] =
    "usage: fernwick-lab VERB [ARGUMENT...]\n"
    "       fernwick-lab help [VERB]\n"
    "       fernwick-lab --version\n"
    "\n"
    "verbs:\n"
    "  lint       look for mistakes in the configurations of a payload\n"
    "  replay     run the tool over a recorded computer\n"
    "  explain    explain why the personalities of a payload match or not\n"
    "  show       print the registry of a recorded computer and what the tool reads of it\n"
    "  convert    write a property list in another serialisation\n"
    "  redact     write recorded computers without what identifies them\n"
    "  record     write this computer, or one whose files were copied, as a recording\n"
    "  import     make a recording of registry dumps\n"
    "  survey     run the tool over many recorded computers, a row for each\n"
    "  coverage   print what recorded computers exercise of a payload\n"
    "  settle     print the versions of recorded computers after every plan is carried out\n"
    "  merge      put the results of all shards together\n"
    "  diff       print which recorded computers two payloads treat differently\n"
    "  sample     write a recording that a personality of a payload matches\n"
    "  draft      print a configuration that matches the controllers of recorded computers\n"
    "  report     write a page about what a payload does for recorded computers\n"
    "\n"
    "\"fernwick-lab help VERB\" explains one.\n";

ChildOutcome RunLab(std::vector<std::string> arguments,
                    OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), FERNWICK_LAB_PROGRAM);
  return RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY, target);
}

ChildOutcome RunTool(std::vector<std::string> arguments,
                     OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), FERNWICK_PROGRAM);
  return RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY, target);
}

// The tool on a computer whose /proc and /sys are empty.
ChildOutcome RunOnEmptyHost(std::vector<std::string> arguments,
                            OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), FERNWICK_PROGRAM);
  return testing::RunOnHost(testing::HostTree("").Root(), arguments, FERNWICK_GOLDEN_DIRECTORY,
                            target);
}

TEST(Output, ClosedIsAFailure) {
  ExpectOutcome(
      RunLab({"replay", Recording, "-p", Payload}, OutputTarget::Closed),
      {"74", "", "fernwick: standard output could not be written: Bad file descriptor\n"});
}

TEST(Output, FullDiskIsAFailure) {
  ExpectOutcome(
      RunLab({"replay", Recording, "-p", Payload}, OutputTarget::FullDisk),
      {"74", "", "fernwick: standard output could not be written: No space left on device\n"});
}

TEST(Output, BrokenPipeIsAFailure) {
  ExpectOutcome(RunLab({"replay", Recording, "-p", Payload}, OutputTarget::BrokenPipe),
                {"74", "", "fernwick: standard output could not be written: Broken pipe\n"});
}

TEST(Output, FullDiskIsAFailureInVerboseMode) {
  ExpectOutcome(
      RunLab({"replay", Recording, "-v", "-p", Payload}, OutputTarget::FullDisk),
      {"74", "", "fernwick: standard output could not be written: No space left on device\n"});
}

TEST(Output, FullDiskKeepsTheStatusOfARejectedCommandLine) {
  ExpectOutcome(RunTool({"-v", "--no-such-option"}, OutputTarget::FullDisk),
                {"2", "",
                 std::string(FERNWICK_PROGRAM) +
                     ": unrecognized option '--no-such-option'\n"
                     "fernwick: standard output could not be written: No space left on device\n"});
}

TEST(Show, ThatCannotBePrintedIsAFailure) {
  for (const char* form : {"--json", "--plane=IOService"}) {
    ExpectOutcome(
        RunLab({"show", Recording, form}, OutputTarget::FullDisk),
        {"74", "",
         "fernwick-lab: standard output could not be written: No space left on device\n"});
  }
}

TEST(Output, ClosedDoesNotMatterWhenNothingIsPrinted) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  ExpectOutcome(RunOnEmptyHost({}, OutputTarget::Closed),
                {"13", "",
                 "fernwick: Error reading plist: No files to support boardID: (null)\n"
                 "fernwick: Unexpected format for config plist file.  Aborting\n"});
}

// The limit is above what a program needs and below what the configuration of the board "Zed-1A05"
// does.
class Memory : public ::testing::Test {
 protected:
  Memory() {
    const auto configuration = payload_.Write("Fernwick/Zed-1A05/Config.plist", "");
    std::filesystem::resize_file(configuration, std::size_t{1} << 28);
  }

  std::vector<std::string> Limited(const std::vector<std::string>& program) const {
    std::vector<std::string> command = {"/bin/sh", "-c", "ulimit -v 200000; exec \"$0\" \"$@\""};
    command.insert(command.end(), program.begin(), program.end());
    command.insert(command.end(), {"-p", payload_.Path()});
    return command;
  }

  const ChildOutcome failure_ = {"71", "", "fernwick: out of memory\n"};

 private:
  const testing::TemporaryDirectory payload_;
};

TEST_F(Memory, ThatRunsOutEndsAReplayWithoutAPlan) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  ExpectOutcome(
      RunChild(Limited({FERNWICK_LAB_PROGRAM, "replay", Recording}), FERNWICK_GOLDEN_DIRECTORY),
      failure_);
}

TEST_F(Memory, ThatRunsOutEndsTheToolWithoutAPlan) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  const testing::HostTree host("sys/class/dmi/id/board_name = Zed-1A05\n");
  ExpectOutcome(
      testing::RunOnHost(host.Root(), Limited({FERNWICK_PROGRAM}), FERNWICK_GOLDEN_DIRECTORY),
      failure_);
}

TEST(Tool, RunsOnAComputerThatReportsNothing) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  ExpectOutcome(RunOnEmptyHost({"-v", "-p", Payload}),
                {"13",
                 "\n"
                 "Board ID:                0\n"
                 "Board ID String:         (null)\n"
                 "Board Revision:          0\n"
                 "\n"
                 "Personalities Directory: ../examples/payload/Fernwick/\n"
                 "\n\n"
                 "No supported hardware on this platform?\n"
                 "\n\n"
                 "\n\nExit status: 13\n",
                 "fernwick: Error reading plist: No files to support boardID: (null)\n"
                 "fernwick: Unexpected format for config plist file.  Aborting\n"});
}

TEST(Lab, WithoutAVerbPrintsItsUsage) {
  ExpectOutcome(RunLab({}), {"64", "", Usage});
}

TEST(Lab, HelpIsAResult) {
  for (const char* help : {"--help", "-h", "help"}) ExpectOutcome(RunLab({help}), {"0", Usage, ""});
}

TEST(Lab, HelpOfAVerbIsAResult) {
  for (const char* verb : {"replay", "show", "redact"}) {
    const auto help = RunLab({verb, "--help"});
    EXPECT_EQ(help.status, "0");
    ExpectOutcome(RunLab({"help", verb}), help);
    ExpectOutcome(RunLab({verb, "-h"}), help);
  }
}

TEST(Lab, PrintsItsVersion) {
  ExpectOutcome(RunLab({"--version"}), {"0", "fernwick-lab " FERNWICK_VERSION "\n", ""});
}

TEST(Lab, HelpThatCannotBeWrittenIsAFailure) {
  const std::string lost =
      "fernwick-lab: standard output could not be written: No space left on device\n";
  ExpectOutcome(RunLab({"--help"}, OutputTarget::FullDisk), {"74", "", lost});
  ExpectOutcome(RunLab({"replay", "--help"}, OutputTarget::FullDisk), {"74", "", lost});
}

TEST(Lab, RefusesAnUnknownVerb) {
  ExpectOutcome(RunLab({"reply"}),
                {"64", "",
                 "fernwick-lab: there is no verb \"reply\" (did you mean \"replay\"?); see "
                 "fernwick-lab --help\n"});
  ExpectOutcome(
      RunLab({"help", "everything"}),
      {"64", "", "fernwick-lab: there is no verb \"everything\"; see fernwick-lab --help\n"});
  ExpectOutcome(RunLab({"--verison"}),
                {"64", "",
                 "fernwick-lab: there is no option \"--verison\" (did you mean \"--version\"?); "
                 "see fernwick-lab --help\n"});
  ExpectOutcome(
      RunLab({"help", "lint", "show"}),
      {"64", "", "fernwick-lab: the operand \"show\" is not expected; see fernwick-lab --help\n"});
}

TEST(Lab, PrintsItsUsageInSeveralWays) {
  const auto usage = RunLab({"--help"});
  EXPECT_TRUE(usage.standardOutput.starts_with("usage: fernwick-lab VERB"));
  for (const auto& line : std::vector<std::vector<std::string>>{
           {"-h"}, {"help"}, {"help", "help"}, {"help", "--help"}, {"help", "-h"}}) {
    ExpectOutcome(RunLab(line), usage);
  }
}

TEST(Lab, NamesAMistypedOptionBeforeWhatIsMissing) {
  ExpectOutcome(RunLab({"explain", "--payloda", Payload, Recording}),
                {"64", "",
                 "fernwick-lab: there is no option \"--payloda\" (did you mean \"--payload\"?); "
                 "see fernwick-lab explain --help\n"});
}

TEST(Replay, NeedsTheRecordingBeforeTheToolsArguments) {
  ExpectOutcome(
      RunLab({"replay", "-v", Recording}),
      {"64", "",
       "fernwick-lab: there is no option \"-v\" before RECORDING; see fernwick-lab replay "
       "--help\n"});
}

TEST(Replay, OfAMissingRecordingPrintsNothing) {
  ExpectOutcome(RunLab({"replay", "no-such.registry.plist", "-v"}),
                {"66", "", "fernwick-lab: no-such.registry.plist: No such file or directory\n"});
}

TEST(Replay, OfADirectoryPrintsNothing) {
  ExpectOutcome(RunLab({"replay", "cases", "-v"}),
                {"66", "", "fernwick-lab: cases: Is a directory\n"});
}

TEST(Replay, OfAMalformedRecordingPrintsNothing) {
  const testing::TemporaryDirectory directory;
  directory.Write("broken.plist", "<plist>\n<dict>\n</plist>\n");
  const auto outcome =
      RunChild({FERNWICK_LAB_PROGRAM, "replay", "broken.plist", "-v"}, directory.Path());
  ExpectOutcome(outcome, {"65", "",
                          "fernwick-lab: broken.plist: line 3, column 1: </plist> found where "
                          "</dict> was expected\n"});
}

TEST(Replay, ShowsNoControlCharacterOfAFileRaw) {
  const testing::TemporaryDirectory directory;
  directory.Write("odd.plist",
                  "<dict><key>Recording Version</key><integer>1</integer>"
                  "<key>a&#9;b&#x9B;</key><true/></dict>");
  const auto outcome = RunChild({FERNWICK_LAB_PROGRAM, "replay", "odd.plist"}, directory.Path());
  ExpectOutcome(outcome,
                {"65", "", "fernwick-lab: odd.plist: the key \"a b\\233\" is not known\n"});
}

}  // namespace
}  // namespace fernwick
