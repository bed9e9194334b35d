// The verb `diff` as a process.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::OutputTarget;

ChildOutcome Diff(std::vector<std::string> arguments, const std::string& directory,
                  OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "diff"});
  return testing::RunChild(arguments, directory, target);
}

ChildOutcome DiffExamples(std::vector<std::string> arguments,
                          OutputTarget target = OutputTarget::Captured) {
  return Diff(std::move(arguments), FERNWICK_GOLDEN_DIRECTORY, target);
}

const std::string Payload = "../examples/payload";

TEST(Diff, OfTheSamePayloadIsEmpty) {
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", Payload, "../examples", "none",
                              "recordings/bare-switch.registry.plist"}),
                {"0",
                 "none: refused: No such file or directory\n"
                 "recordings/bare-switch.registry.plist: ends abnormally: SIGABRT\n"
                 "7 computers: 0 changed (0 gained a plan, 0 lost it), 5 unchanged, 1 refused, 1 "
                 "ended abnormally\n",
                 ""});
}

constexpr char Lost[] =
    "../examples/thunderbolt-only.registry.plist: board Zed-1A06, revision 1\n"
    "  loses plan\n"
    "    fernwick: Error reading plist: No files to support boardID: Zed-1A06\n"
    "    fernwick: Unexpected format for config plist file.  Aborting\n"
    "  loses match LegacyThunderbolt, controller 1 (RID 2, port -, version 23.020000001): 24, "
    "ridge-24.00.bin\n"
    "    fernwick: Error reading plist: No files to support boardID: Zed-1A06\n"
    "    fernwick: Unexpected format for config plist file.  Aborting\n"
    "  loses match LegacyThunderbolt, controller 2 (RID 3, port -, version 23.060000001): 24, "
    "ridge-24.00.bin\n"
    "    fernwick: Error reading plist: No files to support boardID: Zed-1A06\n"
    "    fernwick: Unexpected format for config plist file.  Aborting\n"
    "1 computer: 1 changed (0 gained a plan, 1 lost it), 0 unchanged, 0 refused, 0 ended "
    "abnormally\n";

TEST(Diff, ReportsWhatAComputerLoses) {
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", "payloads/older",
                              "../examples/thunderbolt-only.registry.plist"}),
                {"1", Lost, ""});
}

TEST(Diff, AsJsonHasTheRowsAndTheTotals) {
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", Payload, "--json", "none"}),
                {"0",
                 "{\n"
                 "  \"computers\": [\n"
                 "    {\n"
                 "      \"file\": \"none\",\n"
                 "      \"board\": null,\n"
                 "      \"revision\": 0,\n"
                 "      \"refused\": \"No such file or directory\",\n"
                 "      \"abnormalEnd\": null,\n"
                 "      \"changes\": []\n"
                 "    }\n"
                 "  ],\n"
                 "  \"totals\": {\n"
                 "    \"changed\": 0,\n"
                 "    \"gainedPlan\": 0,\n"
                 "    \"lostPlan\": 0,\n"
                 "    \"unchanged\": 0,\n"
                 "    \"refused\": 1,\n"
                 "    \"endedAbnormally\": 0\n"
                 "  }\n"
                 "}\n",
                 ""});
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", Payload, "--json",
                              "../examples/ports-only.registry.plist"}),
                {"0",
                 "{\n"
                 "  \"computers\": [],\n"
                 "  \"totals\": {\n"
                 "    \"changed\": 0,\n"
                 "    \"gainedPlan\": 0,\n"
                 "    \"lostPlan\": 0,\n"
                 "    \"unchanged\": 1,\n"
                 "    \"refused\": 0,\n"
                 "    \"endedAbnormally\": 0\n"
                 "  }\n"
                 "}\n",
                 ""});
}

// The inventory that ends the run is taken for one of the payloads alone.
TEST(Diff, ReportsAnAbnormalEndThatAppearsOrDisappears) {
  const testing::TemporaryDirectory directory;
  directory.Write("with/Fernwick/Zed-42/Config.plist",
                  "<dict><key>LegacyThunderbolt</key><array/></dict>");
  directory.Write("without/Fernwick/Zed-42/Config.plist", "<dict/>");
  const std::string recording = FERNWICK_GOLDEN_DIRECTORY "/recordings/no-uid.registry.plist";
  const std::string totals =
      "1 computer: 1 changed (0 gained a plan, 0 lost it), 0 unchanged, 0 refused, 0 ended "
      "abnormally\n";
  ExpectOutcome(
      Diff({"-p", "with", "-p", "without", recording}, directory.Path()),
      {"1",
       recording + ": board Zed-42, revision 3\n  no longer ends abnormally: SIGABRT\n" + totals,
       ""});
  ExpectOutcome(
      Diff({"-p", "without", "-p", "with", recording}, directory.Path()),
      {"1", recording + ": board Zed-42, revision 3\n  ends abnormally: SIGABRT\n" + totals, ""});
}

TEST(Diff, NeedsTwoPayloadsThatAreThere) {
  const std::string needed =
      "fernwick-lab: two payloads are needed, -p OLD -p NEW; see fernwick-lab diff --help\n";
  ExpectOutcome(DiffExamples({"-p", Payload, "recordings"}), {"64", "", needed});
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", Payload, "-p", Payload, "recordings"}),
                {"64", "", needed});
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", "/nowhere", "recordings"}),
                {"66", "", "fernwick-lab: /nowhere/Fernwick: there is no such directory\n"});
}

TEST(Diff, OfNothingIsAnError) {
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", Payload, "cases"}),
                {"66", "", "fernwick-lab: there is no recording in what is selected\n"});
}

TEST(Diff, WhoseOutputIsLostStops) {
  ExpectOutcome(
      DiffExamples({"-p", Payload, "-p", Payload, "../examples"}, OutputTarget::FullDisk),
      {"74", "", "fernwick-lab: standard output could not be written: No space left on device\n"});
}

TEST(Diff, PrintsTheSameBytesWhateverTheNumberOfJobs) {
  const testing::TemporaryDirectory directory;
  testing::WriteManyComputers(directory, testing::UnderAddressSanitizer ? 100 : 400, 37);
  directory.Write("other/Fernwick/Zed-0/Config.plist", "<dict/>");
  const auto diff = [&](const char* jobs) {
    return Diff({"-p", "payload", "-p", "other", "computers", jobs}, directory.Path());
  };
  const auto one = diff("-j1");
  EXPECT_EQ(one.status, "1");
  ExpectOutcome(diff("-j2"), one);
  ExpectOutcome(diff("-j9"), one);
}

}  // namespace
}  // namespace fernwick
