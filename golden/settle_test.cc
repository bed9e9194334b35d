// The verb `settle` as a process.

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

ChildOutcome Settle(std::vector<std::string> arguments, const std::string& directory,
                    OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "settle"});
  return testing::RunChild(arguments, directory, target);
}

ChildOutcome SettleExamples(std::vector<std::string> arguments,
                            OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.end(), {"-p", "payload"});
  return Settle(std::move(arguments), FERNWICK_GOLDEN_DIRECTORY "/../examples", target);
}

constexpr char PortsOnly[] = "ports-only.registry.plist";

constexpr char Examples[] =
    "./no-supported-hardware.registry.plist: settled after 0 runs\n"
    "./ports-below-thunderbolt.registry.plist: settled after 1 run\n"
    "  IOService:/bridge0/bridge1/ridge0: 41.050000000999994 -> 43.100000001\n"
    "  IOService:/bridge0/bridge2/ridge1: 41.050000000999994 -> 43.100000001\n"
    "./ports-only.registry.plist: settled after 1 run\n"
    "  IOService:/bus0/hpm0: 171 -> 200\n"
    "  IOService:/bus0/hpm1: 171 -> 200\n"
    "  IOService:/bus0/hpm2: 175 -> 200\n"
    "./thunderbolt-only.registry.plist: settled after 1 run\n"
    "  IOService:/bridge0/ridge0: 23.020000001 -> 24.000000001\n"
    "  IOService:/bridge0/ridge1: 23.060000001 -> 24.000000001\n"
    "./up-to-date.registry.plist: settled after 0 runs\n"
    "5 computers: 5 settled\n"
    "  2 after 0 runs\n"
    "  3 after 1 run\n";

TEST(Settle, PrintsWhatBecomesOfEachComputer) {
  ExpectOutcome(SettleExamples({"."}), {"0", Examples, ""});
}

TEST(Settle, PrintsRowsOfJson) {
  const std::string row =
      R"({"file":"ports-only.registry.plist","outcome":"settled","status":13,"reason":null,)"
      R"("board":"Zed-1A07","revision":2,"runs":1,"comesBack":null,"endedBy":null,"uncheckedBy":null,"controllers":[)"
      R"({"entry":"IOService:/bus0/hpm0","kind":"port","before":171,"after":200,"older":false},)"
      R"({"entry":"IOService:/bus0/hpm1","kind":"port","before":171,"after":200,"older":false},)"
      R"({"entry":"IOService:/bus0/hpm2","kind":"port","before":175,"after":200,"older":false}],)"
      R"("causes":[],"stuck":[],"steps":null,"changes":[]})"
      "\n";
  const std::string totals = "1 computer: 1 settled\n  1 after 1 run\n";
  ExpectOutcome(SettleExamples({PortsOnly, "--json"}), {"0", row, totals});
  ExpectOutcome(SettleExamples({PortsOnly, "--format", "ndjson"}), {"0", row, totals});
}

TEST(Settle, EndsWithStatusOneWhenAComputerNeverSettles) {
  const auto outcome = SettleExamples({".", "--bypassVersion"});
  EXPECT_EQ(outcome.status, "1");
  EXPECT_TRUE(
      outcome.standardOutput.ends_with("5 computers: 2 settled, 3 never settles\n"
                                       "  1 after 0 runs\n"
                                       "  1 after 1 run\n"));
}

TEST(Settle, FailsOnTheOutcomesThatAreNamed) {
  const std::vector<std::string> stuck = {PortsOnly, "--set", "hpm0:Version=0x99"};
  const std::string text =
      "Changed by --set hpm0:Version=0x99\n"
      "ports-only.registry.plist: stuck after 1 run\n"
      "  IOService:/bus0/hpm1: 171 -> 200\n"
      "  IOService:/bus0/hpm2: 175 -> 200\n"
      "  IOService:/bus0/hpm0 stays at 99: LegacyUSBC personality 1 offers 200, but\n"
      "    Existing Min Version 150 at 10:3 is above the installed 99\n"
      "1 computer: 1 stuck\n"
      "  1 after 1 run\n";
  ExpectOutcome(SettleExamples(stuck), {"0", text, ""});
  auto failing = stuck;
  failing.insert(failing.end(), {"--fail-on", "refused,stuck"});
  ExpectOutcome(SettleExamples(failing), {"1", text, ""});
  failing.back() = "no-plan,abnormal";
  ExpectOutcome(SettleExamples(failing), {"0", text, ""});
}

TEST(Settle, RefusesRecordings) {
  const std::string refusals =
      "none: refused: No such file or directory\n"
      "payload/Fernwick/Zed-1A07/Config.plist: refused: \"Recording Version\" is missing\n"
      "2 computers: 2 refused\n";
  ExpectOutcome(SettleExamples({"none", "payload/Fernwick/Zed-1A07/Config.plist"}),
                {"66", refusals, ""});
  ExpectOutcome(SettleExamples({"up-to-date.registry.plist", "--set", "hpm7:Version=1"}),
                {"66",
                 "Changed by --set hpm7:Version=1\n"
                 "up-to-date.registry.plist: refused: --set: there is no entry hpm7\n"
                 "1 computer: 1 refused\n",
                 ""});
}

TEST(Settle, EndsWithStatusOneWhenAPlanBypassesUpdates) {
  const std::string set =
      "SetNVRAM=<dict><key>fernwick_bypass_usbc_updates</key><string>1</string></dict>";
  EXPECT_EQ(SettleExamples({PortsOnly, "--personality", "LegacyUSBC:1:" + set}).status, "1");
  auto bypassed = std::vector<std::string>{
      PortsOnly, "--set", "IODeviceTree:/options:fernwick_bypass_usbc_updates=\"1\""};
  EXPECT_EQ(SettleExamples(bypassed).status, "0");
  bypassed.insert(bypassed.end(), {"--fail-on", "bypassed"});
  EXPECT_EQ(SettleExamples(bypassed).status, "1");
}

TEST(Settle, NeedsAComputerWithEachPersonalityThatIsChanged) {
  const auto outcome = SettleExamples({".", "--personality", "USBC:77:Version=1"});
  EXPECT_EQ(outcome.status, "66");
  EXPECT_EQ(outcome.standardError,
            "fernwick-lab: --personality USBC:77:Version=1: it applies to no computer\n");
  const auto refused = SettleExamples(
      {"payload/Fernwick/Zed-1A07/Config.plist", "--personality", "USBC:77:Version=1"});
  EXPECT_EQ(refused.status, "65");
}

TEST(Settle, RefusesOptionsThatCannotBeRead) {
  const std::string help = "; see fernwick-lab settle --help\n";
  ExpectOutcome(SettleExamples({".", "--fail-on", "stuck,planned"}),
                {"64", "",
                 "fernwick-lab: --fail-on: \"planned\" is not one of stuck, refused, abnormal, "
                 "no-plan, bypassed" +
                     help});
  ExpectOutcome(
      SettleExamples({".", "--set", "hpm0"}),
      {"64", "", "fernwick-lab: --set hpm0: it is not of the form ENTRY:PROPERTY=VALUE" + help});
  EXPECT_EQ(SettleExamples({".", "--board-revision", "256"}).status, "64");
}

TEST(Settle, NeedsAPayloadAndRecordings) {
  ExpectOutcome(Settle({"-p", "nowhere", "."}, FERNWICK_GOLDEN_DIRECTORY),
                {"66", "", "fernwick-lab: nowhere/Fernwick: there is no such directory\n"});
  ExpectOutcome(SettleExamples({"payload"}),
                {"66", "", "fernwick-lab: there is no recording in what is selected\n"});
}

TEST(Settle, WhoseOutputIsLostStops) {
  ExpectOutcome(
      SettleExamples({"."}, OutputTarget::FullDisk),
      {"74", "", "fernwick-lab: standard output could not be written: No space left on device\n"});
}

TEST(Settle, PrintsTheSameBytesWhateverTheNumberOfJobs) {
  const testing::TemporaryDirectory directory;
  testing::WriteManyComputers(directory, testing::UnderAddressSanitizer ? 100 : 400, 37);
  const auto settle = [&](const char* jobs) {
    return Settle({"-p", "payload", "--each", "computers", jobs}, directory.Path());
  };
  const auto one = settle("-j1");
  EXPECT_EQ(one.status, "0");
  ExpectOutcome(settle("-j2"), one);
  ExpectOutcome(settle("-j9"), one);
}

}  // namespace
}  // namespace fernwick
