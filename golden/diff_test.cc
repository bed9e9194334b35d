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
                {"66",
                 "none: refused: No such file or directory\n"
                 "recordings/bare-switch.registry.plist: ends abnormally: SIGABRT\n"
                 "7 computers: 0 changed (0 gained a plan, 0 lost it), 5 unchanged, 1 refused, 1 "
                 "ended abnormally\n",
                 ""});
}

constexpr char LostGroups[] =
    "1 computer of Zed-1A06: loses plan\n"
    "  fernwick: Error reading plist: No files to support boardID: Zed-1A06\n"
    "  fernwick: Unexpected format for config plist file.  Aborting\n"
    "1 computer of Zed-1A06: loses match LegacyThunderbolt, controller 1 (RID 2, port -, version "
    "23.020000001): 24, ridge-24.00.bin\n"
    "  fernwick: Error reading plist: No files to support boardID: Zed-1A06\n"
    "  fernwick: Unexpected format for config plist file.  Aborting\n"
    "1 computer of Zed-1A06: loses match LegacyThunderbolt, controller 2 (RID 3, port -, version "
    "23.060000001): 24, ridge-24.00.bin\n"
    "  fernwick: Error reading plist: No files to support boardID: Zed-1A06\n"
    "  fernwick: Unexpected format for config plist file.  Aborting\n"
    "1 computer: 1 changed (0 gained a plan, 1 lost it), 0 unchanged, 0 refused, 0 ended "
    "abnormally\n";

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
                {"1", LostGroups, ""});
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", "payloads/older", "--each",
                              "../examples/thunderbolt-only.registry.plist"}),
                {"1", Lost, ""});
}

// Three computers of a board, of which one has another version, and two payloads of other
// priorities.
class GroupedDiff : public ::testing::Test {
 protected:
  GroupedDiff() {
    for (const auto& [name, version] : {std::pair("a", "273"), {"b", "273"}, {"c", "274"}}) {
      directory_.Write(
          std::string("fleet/") + name + ".registry.plist",
          "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
          "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key>"
          "<data>WmVkLTE=</data></dict></dict><key>IOService</key><dict><key>Children</key><array>"
          "<dict><key>Name</key><string>p</string><key>Class</key><string>QuinceHPMDevice</string>"
          "<key>Properties</key><dict><key>Version</key><integer>" +
              std::string(version) + "</integer></dict></dict></array></dict></dict></dict>");
    }
    WritePayload("old", "20", "200");
    WritePayload("new", "99", "113");
    directory_.Write("old/Fernwick/Zed-1/a.bin", "one");
    directory_.Write("new/Fernwick/Zed-1/a.bin", "two");
  }

  void WritePayload(const std::string& payload, const std::string& priority,
                    const std::string& version) {
    directory_.Write(payload + "/Fernwick/Zed-1/Config.plist",
                     "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>" + version +
                         "</integer><key>Priority</key><integer>" + priority +
                         "</integer><key>Firmware</key><string>a.bin</string></dict></dict>");
  }

  ChildOutcome DiffFleet(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"-p", "old", "-p", "new", "fleet"});
    return Diff(arguments, directory_.Path());
  }

 private:
  testing::TemporaryDirectory directory_;
};

constexpr char FleetTotals[] =
    "3 computers: 3 changed (0 gained a plan, 0 lost it), 0 unchanged, 0 refused, 0 ended "
    "abnormally\n";

TEST_F(GroupedDiff, CountsEqualChanges) {
  const std::string of = " LegacyUSBC, controller 1 (RID -, port -, version ";
  ExpectOutcome(
      DiffFleet({}),
      {"1",
       "2 computers of Zed-1: version" + of + "111): 200 -> 113\n" +
           "3 computers of Zed-1: priority: 20 -> 99\n" + "2 computers of Zed-1: image bytes" + of +
           "111): a.bin, 3 bytes -> a.bin, 3 bytes\n" + "1 computer of Zed-1: version" + of +
           "112): 200 -> 113\n" + "1 computer of Zed-1: image bytes" + of +
           "112): a.bin, 3 bytes -> a.bin, 3 bytes\n" + FleetTotals,
       ""});
}

TEST_F(GroupedDiff, AsCsvHasALineForEachChange) {
  const auto outcome = DiffFleet({"--format", "csv"});
  EXPECT_EQ(outcome.status, "1");
  EXPECT_EQ(outcome.standardError, FleetTotals);
  const std::string first =
      "file,board,revision,change,match,before,after,reasons\r\n"
      "fleet/a.registry.plist,Zed-1,0,version,\"LegacyUSBC, controller 1 (RID -, port -, version "
      "111)\",200,113,\r\n"
      "fleet/a.registry.plist,Zed-1,0,priority,,20,99,\r\n";
  EXPECT_EQ(outcome.standardOutput.substr(0, first.size()), first);
}

TEST_F(GroupedDiff, AsJunitFailsWhatChanges) {
  const auto outcome = DiffFleet({"--format", "junit", "none"});
  EXPECT_EQ(outcome.status, "66");
  const std::string first =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n"
      "  <testsuite name=\"fernwick-lab diff\" tests=\"4\" failures=\"3\" errors=\"0\" "
      "skipped=\"1\">\n"
      "    <testcase classname=\"Zed-1\" name=\"fleet/a.registry.plist\">\n"
      "      <failure type=\"changed\" message=\"not as with the old payload\">\n"
      "version LegacyUSBC, controller 1 (RID -, port -, version 111): 200 -&gt; 113\n"
      "priority: 20 -&gt; 99\n";
  EXPECT_EQ(outcome.standardOutput.substr(0, first.size()), first);
  const std::string last =
      "    <testcase classname=\"-\" name=\"none\">\n"
      "      <skipped message=\"refused: No such file or directory\"/>\n"
      "    </testcase>\n  </testsuite>\n</testsuites>\n";
  EXPECT_TRUE(outcome.standardOutput.ends_with(last)) << outcome.standardOutput;
}

TEST_F(GroupedDiff, HonoursTheVersionBypass) {
  WritePayload("new", "99", "50");
  EXPECT_NE(DiffFleet({}).standardOutput.find("3 lost it"), std::string::npos);
  EXPECT_NE(DiffFleet({"--bypassVersion"}).standardOutput.find("0 lost it"), std::string::npos);
}

TEST(Diff, AsJsonHasTheRowsAndTheTotals) {
  ExpectOutcome(DiffExamples({"-p", Payload, "-p", Payload, "--format", "json", "none"}),
                {"66",
                 "{\n"
                 "  \"computers\": [\n"
                 "    {\n"
                 "      \"file\": \"none\",\n"
                 "      \"board\": null,\n"
                 "      \"revision\": 0,\n"
                 "      \"refused\": \"No such file or directory\",\n"
                 "      \"abnormalEnd\": null,\n"
                 "      \"changes\": [],\n"
                 "      \"notes\": []\n"
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

// The inventory that ends the run is collected for only one of the payloads.
TEST(Diff, ReportsAnAbnormalEndThatAppearsOrDisappears) {
  const testing::TemporaryDirectory directory;
  directory.Write("with/Fernwick/Zed-42/Config.plist",
                  "<dict><key>LegacyThunderbolt</key><array/></dict>");
  directory.Write("without/Fernwick/Zed-42/Config.plist", "<dict/>");
  const std::string recording = FERNWICK_GOLDEN_DIRECTORY "/recordings/no-uid.registry.plist";
  const std::string totals =
      "1 computer: 1 changed (0 gained a plan, 0 lost it), 0 unchanged, 0 refused, 0 ended "
      "abnormally\n";
  ExpectOutcome(Diff({"-p", "with", "-p", "without", recording}, directory.Path()),
                {"1", "1 computer of Zed-42: no longer ends abnormally: SIGABRT\n" + totals, ""});
  ExpectOutcome(Diff({"-p", "without", "-p", "with", recording}, directory.Path()),
                {"1", "1 computer of Zed-42: ends abnormally: SIGABRT\n" + totals, ""});
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
