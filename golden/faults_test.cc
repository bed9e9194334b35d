// The programs while files change and calls fail under them: each ends with a complete plan and
// the status 0, or with a message, another status and no plan.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "testing/coverage_counting.h"
#include "testing/files.h"
#include "testing/host_tree.h"
#include "testing/programs/child_process.h"
#include "testing/programs/host_namespace.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::RunChild;

const std::string Examples = FERNWICK_SOURCE_DIRECTORY "/examples/";
const std::string OutOfMemory = "fernwick: out of memory\n";

ChildOutcome NoPlan(const std::string& error) {
  return {"13", "",
          "fernwick: Error reading plist: " + error +
              "\nfernwick: Unexpected format for config plist file.  Aborting\n"};
}

// A recorded computer and a payload for it, in a directory of their own.
class World {
 public:
  World()
      : recording_(directory_.Write("computer.registry.plist",
                                    testing::ReadFile(Examples + "ports-only.registry.plist"))),
        configuration_(directory_.Write(
            "Fernwick/Zed-1A07/Config.plist",
            testing::ReadFile(Examples + "payload/Fernwick/Zed-1A07/Config.plist"))) {}

  const std::string& Path() const { return directory_.Path(); }
  const std::string& Recording() const { return recording_; }
  const std::string& Configuration() const { return configuration_; }

  void WriteConfiguration(const std::string& text) const {
    directory_.Write("Fernwick/Zed-1A07/Config.plist", text);
  }

  ChildOutcome Replay() const {
    return RunChild({FERNWICK_LAB_PROGRAM, "replay", "computer.registry.plist", "-p", "."}, Path());
  }

#ifdef FERNWICK_FAULT_SHIM
  // A replay in which what `fault` says goes wrong.
  ChildOutcome ReplayWith(const std::string& fault) const {
    return RunChild({"/usr/bin/env", "LD_PRELOAD=" FERNWICK_FAULT_SHIM, fault,
                     FERNWICK_DYNAMIC_LAB_PROGRAM, "replay", "computer.registry.plist", "-p", "."},
                    Path());
  }
#endif

  // A replay by a shell that runs `before` first and appends `after` to the command.
  ChildOutcome ReplayByShell(const std::string& before, const std::string& after) const {
    return RunChild(
        {"/bin/sh", "-c", before + "\"$0\" replay computer.registry.plist -p . " + after,
         FERNWICK_LAB_PROGRAM},
        Path());
  }

 private:
  testing::TemporaryDirectory directory_;
  std::string recording_;
  std::string configuration_;
};

// The outcome without a fault.
ChildOutcome UsualOutcome() {
  auto usual = World().Replay();
  EXPECT_EQ(usual.status, "0");
  EXPECT_TRUE(usual.standardOutput.ends_with("</plist>\n"));
  EXPECT_EQ(usual.standardError, "");
  return usual;
}

// A plan larger than any buffer on its way.
void EnlargePlan(const World& world) {
  auto text = testing::ReadFile(world.Configuration());
  const std::string variable = "fernwick-last-error";
  const auto at = text.find(variable);
  ASSERT_NE(at, std::string::npos);
  world.WriteConfiguration(text.insert(at, std::string(300'000, 'x')));
}

#ifdef FERNWICK_FAULT_SHIM

void Halve(const std::string& path) {
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
}

struct Race {
  std::string moment;  // when the file's turn comes, and
  std::string action;  // what then happens to it
  ChildOutcome outcome;
};

ChildOutcome ReplayWithRace(const std::string& moment, const std::string& action,
                            const std::string& file) {
  return World().ReplayWith("FERNWICK_FAULT=" + moment + ":" + action + ":" + file);
}

// It was there when it was looked for.
TEST(Configuration, ThatChangesBeforeOrWhileItIsReadEndsInAPlanOrNone) {
  const auto usual = UsualOutcome();
  const World halved;
  Halve(halved.Configuration());
  const auto cutShort = halved.Replay();
  EXPECT_EQ(cutShort.status, "13");
  EXPECT_EQ(cutShort.standardOutput, "");
  const Race races[] = {
      {"open", "remove", NoPlan("No such file or directory, format: 0")},
      {"open", "fifo", NoPlan("not a regular file, format: 0")},
      {"open", "directory", NoPlan("Is a directory, format: 0")},
      {"open", "forbid", NoPlan("Permission denied, format: 0")},
      {"open", "empty", NoPlan("the file is empty, format: 0")},
      {"open", "halve", cutShort},
      {"open", "grow", usual},
      {"fstat", "fail", NoPlan("Input/output error, format: 0")},
      {"fstat", "remove", usual},
      {"fstat", "fifo", usual},
      {"fstat", "empty", NoPlan("the file is empty, format: 0")},
      {"fstat", "halve", cutShort},
      {"fstat", "grow", usual},
      {"read", "fail", NoPlan("Input/output error, format: 0")},
      {"read", "remove", usual},
      {"read", "empty", NoPlan("the file is empty, format: 0")},
      {"read", "halve", cutShort},
      {"read", "grow", usual},
      {"reread", "fail", NoPlan("Input/output error, format: 0")},
      {"reread", "empty", usual},
      {"reread", "grow", usual},
      {"read", "interrupt", usual},
      {"reread", "interrupt", usual},
  };
  for (const auto& race : races) {
    SCOPED_TRACE(race.moment + ", " + race.action);
    ExpectOutcome(ReplayWithRace(race.moment, race.action, "Config.plist"), race.outcome);
  }
}

TEST(Configuration, ThatGrowsBeyondTheMaximumWhileItIsReadEndsInNoPlan) {
  ExpectOutcome(ReplayWithRace("read", "enlarge", "Config.plist"),
                NoPlan("the file is larger than 1 GiB, format: 0"));
}

// What the lab shows of a computer with a fault in the file of its command line, from "boot-args"
// on: nothing where that is absent.
std::string BootArgumentsWith(const std::string& moment, const std::string& action) {
  const testing::HostTree tree("proc/cmdline = quiet\n");
  const auto shown = testing::RunOnHost(
      tree.Root(),
      {"/usr/bin/env", "LD_PRELOAD=" FERNWICK_FAULT_SHIM,
       "FERNWICK_FAULT=" + moment + ":" + action + ":/proc/cmdline", FERNWICK_DYNAMIC_LAB_PROGRAM,
       "show", "--host", "--plane", "IODeviceTree"},
      "/");
  EXPECT_EQ(shown.status, "0");
  EXPECT_EQ(shown.standardError, "");
  const auto end = shown.standardOutput.find("\n\nThunderbolt");
  const auto start = std::min(shown.standardOutput.find("\"boot-args\""), end);
  return shown.standardOutput.substr(start, end - start);
}

// A file that vanishes, becomes another or grows between the listing of its directory and its end.
TEST(Host, WhoseFilesChangeBeforeOrWhileTheyAreReadLacksWhatTheyHad) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  const std::string usual = "\"boot-args\" = \"quiet\"";
  const std::string absent;
  const struct {
    std::string moment, action, found;
  } races[] = {
      {"", "", usual},
      {"open", "remove", absent},
      {"open", "fifo", absent},
      {"open", "directory", absent},
      {"open", "forbid", absent},
      {"open", "empty", "\"boot-args\" = \"\""},
      {"open", "grow", absent},
      {"open", "enlarge", absent},
      {"fstat", "fail", absent},
      {"fstat", "remove", usual},
      {"fstat", "fifo", usual},
      {"fstat", "grow", absent},
      {"read", "fail", absent},
      {"read", "remove", usual},
      {"read", "grow", absent},
      {"reread", "fail", absent},
      {"read", "interrupt", usual},
      {"reread", "interrupt", usual},
  };
  for (const auto& [moment, action, found] : races) {
    EXPECT_EQ(BootArgumentsWith(moment, action), found) << moment << ", " << action;
  }
}

TEST(Recording, ThatChangesBeforeOrWhileItIsReadEndsInAPlanOrNone) {
  const auto refused = [](const std::string& status, const std::string& error) {
    return ChildOutcome{status, "", "fernwick-lab: computer.registry.plist: " + error + "\n"};
  };
  const auto usual = UsualOutcome();
  const World halved;
  Halve(halved.Recording());
  const auto cutShort = halved.Replay();
  EXPECT_EQ(cutShort.status, "65");
  EXPECT_EQ(cutShort.standardOutput, "");
  const Race races[] = {
      {"open", "remove", refused("66", "No such file or directory")},
      {"open", "fifo", refused("66", "not a regular file")},
      {"open", "directory", refused("66", "Is a directory")},
      {"open", "forbid", refused("66", "Permission denied")},
      {"open", "empty", refused("65", "the file is empty")},
      {"fstat", "fail", refused("66", "Input/output error")},
      {"fstat", "remove", usual},
      {"read", "fail", refused("66", "Input/output error")},
      {"read", "empty", refused("65", "the file is empty")},
      {"read", "halve", cutShort},
      {"read", "grow", usual},
      {"reread", "empty", usual},
  };
  for (const auto& race : races) {
    SCOPED_TRACE(race.moment + ", " + race.action);
    ExpectOutcome(ReplayWithRace(race.moment, race.action, ".registry.plist"), race.outcome);
  }
}

// Each allocation in turn fails, until there are no more.
TEST(Memory, ThatRunsOutAtAnyPointEndsInAPlanOrNone) {
  if (testing::CountingCoverage) GTEST_SKIP();
  const auto usual = UsualOutcome();
  const World world;
  int plansInARow = 0;
  int failures = 0;
  for (int allocation = 1; plansInARow < 50; ++allocation) {
    SCOPED_TRACE(allocation);
    const auto found =
        world.ReplayWith("FERNWICK_FAILING_ALLOCATION=" + std::to_string(allocation));
    plansInARow = found == usual ? plansInARow + 1 : 0;
    if (plansInARow > 0) continue;
    ++failures;
    ExpectOutcome(found, {"71", "", OutOfMemory});
    if (HasFailure()) break;
  }
  EXPECT_GT(failures, 50);
}

#endif

// From less than the program needs to start to more than it needs at all.
TEST(Memory, OfAnyLimitEndsInAPlanOrNone) {
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const World world;
  world.WriteConfiguration(testing::ReadFile(world.Configuration()) +
                           std::string(8'000'000, ' '));  // so that limits end it in between
  const auto usual = UsualOutcome();
  std::vector<std::string> met;
  for (int kibibytes = 1000; kibibytes < 100'000; kibibytes += kibibytes / 20) {
    SCOPED_TRACE(kibibytes);
    const auto found =
        world.ReplayByShell("ulimit -v " + std::to_string(kibibytes) + "; exec ", "");
    // Where the limit is too low to load the program, the system ends it before it begins.
    const bool starts = found.status != "127" && found.status != "SIGSEGV";
    if (found == usual) {
      met.emplace_back("plan");
    } else if (starts) {
      ExpectOutcome(found, {"71", "", OutOfMemory});
      met.emplace_back("none");
    } else {
      EXPECT_EQ(found.standardOutput, "");
      met.emplace_back("not started");
    }
  }
  met.erase(std::unique(met.begin(), met.end()), met.end());
  EXPECT_EQ(met, (std::vector<std::string>{"not started", "none", "plan"}));
}

constexpr std::size_t Gibibyte = std::size_t{1} << 30;

TEST(Size, OfAConfigurationAtItsBounds) {
  const World world;
  std::filesystem::resize_file(world.Configuration(), Gibibyte);  // filled up with zero bytes
  ExpectOutcome(world.Replay(),
                NoPlan("line 28, column 1: a character that XML cannot carry, format: 100"));
  world.WriteConfiguration("");
  ExpectOutcome(world.Replay(), NoPlan("the file is empty, format: 0"));
  world.WriteConfiguration("<");
  ExpectOutcome(world.Replay(), NoPlan("line 1, column 1: data does not end, format: 1"));
  std::filesystem::resize_file(world.Configuration(), Gibibyte + 1);
  ExpectOutcome(world.Replay(), NoPlan("the file is larger than 1 GiB, format: 0"));
}

TEST(Size, OfARecordingAtItsBounds) {
  const World world;
  const std::string prefix = "fernwick-lab: computer.registry.plist: ";
  std::filesystem::resize_file(world.Recording(), 0);
  ExpectOutcome(world.Replay(), {"65", "", prefix + "the file is empty\n"});
  std::filesystem::resize_file(world.Recording(), Gibibyte + 1);
  ExpectOutcome(world.Replay(), {"66", "", prefix + "the file is larger than 1 GiB\n"});
}

TEST(Payload, OfANameThatIsNotUtf8IsAbsent) {
  const World world;
  const std::string name = "payload-\xFF";
  std::filesystem::create_directory(world.Path() + "/" + name);
  std::filesystem::rename(world.Path() + "/Fernwick", world.Path() + "/" + name + "/Fernwick");
  const auto outcome = RunChild(
      {FERNWICK_LAB_PROGRAM, "replay", "computer.registry.plist", "-p", name}, world.Path());
  ExpectOutcome(outcome, NoPlan("No files to support boardID: Zed-1A07"));
}

TEST(Streams, ThatThePlanDoesNotNeedMayBeMissing) {
  const auto usual = UsualOutcome();
  const World world;
  for (const std::string missing : {"<&-", "2>&-", "2>/dev/full", "<&- 2>&-"}) {
    SCOPED_TRACE(missing);
    ExpectOutcome(world.ReplayByShell("exec ", missing), usual);
  }
}

TEST(Streams, ThatAreAllClosedAreAFailure) {
  ExpectOutcome(World().ReplayByShell("exec ", "<&- >&- 2>&-"), {"74", "", ""});
}

TEST(Streams, WithoutStandardErrorARefusalKeepsItsStatus) {
  const World world;
  world.WriteConfiguration("");
  for (const std::string missing : {"2>&-", "2>/dev/full"}) {
    SCOPED_TRACE(missing);
    ExpectOutcome(world.ReplayByShell("exec ", missing), {"13", "", ""});
  }
}

// The file may not grow beyond 64 blocks of 512 bytes.
TEST(Plan, ThatTheDiskHasNoRoomForIsAFailure) {
  if (testing::CountingCoverage) GTEST_SKIP();
  const World world;
  EnlargePlan(world);
  const auto whole = world.Replay();
  ASSERT_EQ(whole.status, "0");
  ExpectOutcome(world.ReplayByShell("trap '' XFSZ; ulimit -f 64; exec ", "> plan"),
                {"74", "", "fernwick: standard output could not be written: File too large\n"});
  EXPECT_EQ(testing::ReadFile(world.Path() + "/plan"),
            whole.standardOutput.substr(0, std::size_t{64} * 512));
}

TEST(Plan, WhoseReaderClosesEarlyIsAFailure) {
  const World world;
  EnlargePlan(world);
  ExpectOutcome(
      world.ReplayByShell("{ ", "; echo $? > status; } | head -c 1 > /dev/null; cat status"),
      {"0", "74\n", "fernwick: standard output could not be written: Broken pipe\n"});
}

}  // namespace
}  // namespace fernwick
