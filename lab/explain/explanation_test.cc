#include "lab/explain/explanation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "driver/bypass_switch.h"
#include "lab/explain/print.h"
#include "lab/explain/trial_registry.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"

namespace fernwick::lab {
namespace {

using testing::Computer;

// Three ports of the board "Zed-42", the second without UUID.
Computer ThreePorts() {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort("hpm0", {{"Version", 0x171}, {"Address", 0}, {"UUID", "A0"}});
  computer.AddPort("hpm1", {{"Version", 0x171}, {"Address", 1}});
  computer.AddPort("hpm2", {{"Version", 0x171}, {"Address", 2}, {"UUID", "A2"}});
  return computer;
}

// Views the computer.
Explanation ExplainText(const Computer& computer, std::string_view configuration) {
  const testing::TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/Config.plist", configuration);
  return Explain(computer.Recorded(), ToolOptions(payload.Path(), false));
}

std::string LocationText(const std::optional<FileLocation>& location) {
  return location ? Describe(*location) : "unknown";
}

const ExplainedFailure& FirstFailure(const Explanation& explanation, std::size_t controller) {
  return explanation.keys.at(0).controllers.at(controller).pairs.at(0).failures.at(0);
}

// What the first failure's value is read from.
const ExplainedSources& SourcesOfFirst(const Explanation& explanation, std::size_t controller) {
  const auto& failed = FirstFailure(explanation, controller).failed;
  const auto& sources = explanation.keys.at(0).controllers.at(controller).sources;
  return sources.at(failed.requirement->hardwareKey);
}

constexpr char TwoKeys[] =
    "{\n"
    "  LegacyUSBC = x;\n"
    "  LegacyUSBC = {\n"
    "    \"Port Address\" = (\"1\");\n"
    "    Firmware = old;\n"
    "    Firmware = new;\n"
    "    Colour = blue;\n"
    "    Colour = red;\n"
    "  };\n"
    "}\n";

TEST(Explanation, OfKeysThatOccurTwiceHasTheLocationsOfTheLast) {
  const auto computer = ThreePorts();
  const auto explanation = ExplainText(computer, TwoKeys);
  const auto& key = explanation.keys.at(0);
  EXPECT_EQ(LocationText(key.location), "3:3");
  const auto& personality = key.personalities.at(0);
  EXPECT_EQ(LocationText(personality.location), "3:16");
  EXPECT_EQ(personality.firmware, "new");
  ASSERT_EQ(personality.unread.size(), 1u);
  EXPECT_EQ(personality.unread.front().key, "Colour");
  EXPECT_EQ(LocationText(personality.unread.front().location), "8:5");
}

TEST(Explanation, OfAMissingKeyHasNoLocation) {
  const auto computer = ThreePorts();
  const auto explanation = ExplainText(computer, TwoKeys);
  const auto& failure = FirstFailure(explanation, 0);
  EXPECT_EQ(failure.failed.requirement->key, "Version");
  EXPECT_EQ(LocationText(failure.wantedLocation), "unknown");
  const auto& address = explanation.keys.at(0).controllers.at(0).pairs.at(0).failures.at(1);
  EXPECT_EQ(address.failed.requirement->key, "Port Address");
  EXPECT_EQ(LocationText(address.wantedLocation), "4:22");
}

TEST(Explanation, DistinguishesAUuidThatIsNotReadFromOneThatIsNotThere) {
  const auto computer = ThreePorts();
  const auto explanation =
      ExplainText(computer,
                  "<dict><key>USBC</key><array><dict><key>Version</key><integer>172</integer>"
                  "<key>Port UUID</key><array><string>A2</string></array></dict></array></dict>");
  for (const std::size_t controller : {1u, 2u}) {
    const auto& explained = explanation.keys.at(0).controllers.at(controller);
    const auto& uuid = explained.pairs.at(0).failures.back().failed;
    EXPECT_EQ(uuid.requirement->key, "Port UUID");
    EXPECT_EQ(uuid.reason, FailureReason::HardwareLacksKey);
    EXPECT_EQ(IsUuidUnread(uuid, explained), controller == 2);
  }
}

TEST(Explanation, NamesTheEntryAndThePropertyOfAValue) {
  const auto computer = ThreePorts();
  const auto explanation =
      ExplainText(computer,
                  "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>171</integer>"
                  "</dict></dict>");
  EXPECT_EQ(FirstFailure(explanation, 1).failed.found, 171);
  const auto& sources = SourcesOfFirst(explanation, 1);
  ASSERT_EQ(sources.size(), 1u);
  EXPECT_EQ(sources.front().path, "IOService:/hpm1");
  EXPECT_EQ(sources.front().property, "Version");
  EXPECT_EQ(sources.front().value, 0x171);
}

constexpr char FromRevision4[] =
    "<dict><key>USBC</key><array><dict><key>Version</key><integer>200</integer>"
    "<key>MinBoardRevision</key><integer>4</integer></dict></array></dict>";

TEST(Explanation, NamesThePropertyOfTheBoardRevision) {
  const auto computer = ThreePorts();
  const auto explanation = ExplainText(computer, FromRevision4);
  EXPECT_EQ(FirstFailure(explanation, 0).failed.requirement->key, "MinBoardRevision");
  ASSERT_EQ(SourcesOfFirst(explanation, 0).size(), 1u);
  const auto& source = SourcesOfFirst(explanation, 0).front();
  EXPECT_EQ(source.path, "IODeviceTree:/");
  EXPECT_EQ(source.property, "board-rev");
  EXPECT_EQ(source.value, testing::Bytes("\3"));
  EXPECT_EQ(source.conversion, "its first byte");
}

TEST(Explanation, OfABoardWithoutARevisionSaysThatThereIsNone) {
  Computer computer;
  computer.AddPort("hpm0", {{"Version", 0x171}});
  computer.Set(computer.Board(), "board-id", testing::Bytes("Zed-42"));
  const auto explanation = ExplainText(computer, FromRevision4);
  std::string text;
  PrintExplanationText(explanation, false, [&](std::string_view piece) { text += piece; });
  EXPECT_NE(text.find("  \"board-rev\" of the device tree is absent\n"), std::string::npos);
}

TEST(Explanation, OfABareSwitchShowsTheBootArguments) {
  auto computer = ThreePorts();
  computer.Set(computer.Options(), "boot-args", "-v fernwick_bypassversioncheck");
  const auto explanation = ExplainText(computer, "<dict/>");
  EXPECT_EQ(explanation.end, RunEnd::Abnormal);
  EXPECT_EQ(explanation.run.result.fault, Fault::BareSwitch);
  ASSERT_EQ(explanation.faultSources.size(), 1u);
  EXPECT_EQ(explanation.faultSources.front().value, "-v fernwick_bypassversioncheck");
  EXPECT_EQ(explanation.identity.boardIdString, "Zed-42");
}

TEST(Explanation, OfAMissingUidShowsTheControllersWithoutOne) {
  auto computer = ThreePorts();
  const Record own = {{"Depth", 0}, {"Route String", 0}};
  computer.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}, {"UID", 1}});
  computer.AddThunderbolt("ridge1", own);
  const auto explanation =
      ExplainText(computer, "<dict><key>LegacyThunderbolt</key><array/></dict>");
  EXPECT_EQ(explanation.end, RunEnd::Abnormal);
  EXPECT_EQ(explanation.run.result.fault, Fault::MissingUid);
  ASSERT_EQ(explanation.faultSources.size(), 1u);
  EXPECT_EQ(explanation.faultSources.front().path, "IOService:/ridge1");
}

// The paths of the controllers whose missing "UID" ended the run.
std::vector<std::string> PathsWithoutUid(const Computer& computer, std::string_view configuration) {
  const auto explanation = ExplainText(computer, configuration);
  EXPECT_EQ(explanation.run.result.fault, Fault::MissingUid);
  std::vector<std::string> paths;
  for (const auto& source : explanation.faultSources) paths.push_back(source.path);
  return paths;
}

using Texts = std::vector<std::string>;

TEST(Explanation, OfAMissingUidShowsOnlyControllersThatTheRunReads) {
  auto computer = ThreePorts();
  const Record own = {{"Depth", 0}, {"Route String", 0}};
  const Record device = {{"Depth", 1}, {"Route String", 1}};
  computer.AddThunderbolt("device", device);
  computer.AddThunderbolt("ridge0", own);
  const auto above = computer.AddThunderbolt("ridge1", device);
  computer.AddService(above, "hpm3", PortControllerClass, {{"Version", 0x171}});
  computer.AddService(above, "hpm4", PortControllerClass, {{"Version", 0x171}});
  computer.AddThunderbolt("ridge2", own);
  EXPECT_EQ(PathsWithoutUid(computer, "<dict><key>LegacyThunderbolt</key><array/></dict>"),
            (Texts{"IOService:/ridge0", "IOService:/ridge2"}));
  EXPECT_EQ(PathsWithoutUid(computer, "<dict><key>USBC</key><array/></dict>"),
            Texts{"IOService:/ridge1"});
  EXPECT_EQ(PathsWithoutUid(computer,
                            "<dict><key>USBC</key><array/><key>LegacyThunderbolt</key><array/>"
                            "</dict>"),
            (Texts{"IOService:/ridge1", "IOService:/ridge0", "IOService:/ridge2"}));
}

constexpr char ForEveryPort[] =
    "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>172</integer>"
    "<key>Firmware</key><string>port.bin</string></dict></dict>";

// A computer with these boot arguments and this NVRAM variable, "NAME=VALUE".
Computer Switched(const char* bootArguments, std::string_view variable) {
  auto computer = ThreePorts();
  if (bootArguments != nullptr) computer.Set(computer.Options(), "boot-args", bootArguments);
  const auto name = variable.substr(0, variable.find('='));
  if (!name.empty()) computer.Set(computer.Options(), name, variable.substr(name.size() + 1));
  return computer;
}

TEST(Explanation, OfABypassSaysWhatSetTheSwitchAndWhatHappensWithoutIt) {
  const auto byArgument =
      Switched("-v fernwick_bypass_usbc_updates=1", "fernwick_bypass_usbc_updates=1");
  const auto explanation = ExplainText(byArgument, ForEveryPort);
  EXPECT_EQ(explanation.end, RunEnd::Bypassed);
  ASSERT_EQ(explanation.switches.size(), 1u);
  EXPECT_TRUE(explanation.switches[0].isBootArgument);
  EXPECT_EQ(explanation.switches[0].source.value, "-v fernwick_bypass_usbc_updates=1");
  ASSERT_NE(explanation.withoutSwitch, nullptr);
  EXPECT_EQ(explanation.withoutSwitch->end, RunEnd::Planned);
  EXPECT_TRUE(explanation.withoutSwitch->switches.empty());
  EXPECT_EQ(explanation.withoutSwitch->withoutSwitch, nullptr);

  const auto byVariable =
      Switched("fernwick_bypass_usbc_updates=0", "fernwick_bypass_usbc_updates=1");
  const auto other = ExplainText(byVariable, ForEveryPort);
  ASSERT_EQ(other.switches.size(), 1u);
  EXPECT_FALSE(other.switches[0].isBootArgument);
  EXPECT_EQ(other.switches[0].source.property, "fernwick_bypass_usbc_updates");
  EXPECT_EQ(other.withoutSwitch->end, RunEnd::Planned);
}

TEST(Explanation, WithoutTheSwitchThatEndsTheRunHasTheOtherOne) {
  const auto computer = Switched(
      "fernwick_bypass_usbc_updates fernwick_bypassversioncheck fernwick_bypassversioncheck=1", "");
  const auto explanation = ExplainText(computer, ForEveryPort);
  EXPECT_EQ(explanation.run.result.fault, Fault::BareSwitch);
  const auto& without = *explanation.withoutSwitch;
  EXPECT_EQ(without.end, RunEnd::Planned);
  ASSERT_EQ(without.switches.size(), 1u);
  EXPECT_EQ(without.switches[0].name, VersionSwitch);
  EXPECT_TRUE(without.switches[0].isBootArgument);

  const auto byVariable = Switched("fernwick_bypassversioncheck", "fernwick_bypassversioncheck=1");
  const auto other = ExplainText(byVariable, ForEveryPort);
  ASSERT_EQ(other.withoutSwitch->switches.size(), 1u);
  EXPECT_FALSE(other.withoutSwitch->switches[0].isBootArgument);
}

TEST(Explanation, OfAMatchByBypassHasWhatWouldRejectIt) {
  const auto computer = Switched(nullptr, "fernwick_bypassversioncheck=1");
  const auto explanation =
      ExplainText(computer,
                  "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>171</integer>"
                  "<key>Firmware</key><string>port.bin</string></dict></dict>");
  const auto& pair = explanation.keys.at(0).controllers.at(0).pairs.at(0);
  EXPECT_EQ(pair.outcome, PairOutcome::Matched);
  ASSERT_EQ(pair.failures.size(), 1u);
  EXPECT_EQ(pair.failures[0].failed.reason, FailureReason::NotNewer);
}

std::string Personality(int version, std::string_view address) {
  return "<dict><key>Version</key><integer>" + std::to_string(version) +
         "</integer><key>Port Address</key><integer>" + std::string(address) +
         "</integer><key>Port Silicon Vendor ID</key><integer>1</integer>"
         "<key>Port Silicon Device ID</key><integer>2</integer>"
         "<key>Port Silicon Revision</key><integer>3</integer></dict>";
}

Computer OnePort() {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort(
      "hpm0",
      {{"Version", 0x171}, {"Address", 0}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}});
  return computer;
}

std::string UsbcKey(const std::string& personalities) {
  return "<dict><key>USBC</key><array>" + personalities + "</array></dict>";
}

TEST(Explanation, NearestMissIsOfThePortItselfWhateverItsVersion) {
  const auto computer = OnePort();
  const auto explanation =
      ExplainText(computer, UsbcKey(Personality(180, "1") + Personality(171, "0")));
  std::string text;
  PrintExplanationText(explanation, false, [&](std::string_view piece) { text += piece; });
  EXPECT_NE(text.find("Nearest miss    USBC, personality 2 at "), std::string::npos) << text;
}

TEST(Explanation, OfAPersonalityThatWasNotReachedHasWhatWouldRejectIt) {
  const auto computer = OnePort();
  const auto explanation = ExplainText(
      computer,
      UsbcKey(Personality(180, "0") + Personality(181, "0") + Personality(182, "1") + "<true/>"));
  const auto& pairs = explanation.keys.at(0).controllers.at(0).pairs;
  ASSERT_EQ(pairs.size(), 4u);
  for (std::size_t i = 1; i < 4; ++i) EXPECT_EQ(pairs[i].outcome, PairOutcome::NotReached);
  EXPECT_TRUE(pairs[1].failures.empty());
  ASSERT_EQ(pairs[2].failures.size(), 1u);
  EXPECT_EQ(pairs[2].failures[0].failed.requirement->key, "Port Address");
  EXPECT_TRUE(pairs[3].failures.empty());
}

// What is explained of the pairs of the first controller: the numbers of the personalities.
std::vector<std::size_t> Explained(const Explanation& explanation) {
  std::vector<std::size_t> personalities;
  for (const auto& pair : explanation.keys.at(0).controllers.at(0).pairs) {
    personalities.push_back(pair.personality);
  }
  return personalities;
}

Explanation ExplainSelected(const Computer& computer, const std::string& configuration,
                            const ExplainFilter& filter) {
  const testing::TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/Config.plist", configuration);
  return Explain(computer.Recorded(), ToolOptions(payload.Path(), false), filter);
}

TEST(ExplainFilter, OfTheNearestHasTheMatchAndTheSmallestDistances) {
  const auto computer = OnePort();
  const auto configuration = UsbcKey(Personality(170, "1") + Personality(170, "0") +
                                     Personality(171, "0") + Personality(180, "0"));
  const auto nearest = [&](std::size_t count) {
    return ExplainSelected(computer, configuration, {.nearest = count});
  };
  EXPECT_EQ(Explained(nearest(1)), std::vector<std::size_t>{3});
  EXPECT_EQ(Explained(nearest(2)), (std::vector<std::size_t>{1, 3}));
  EXPECT_EQ(Explained(nearest(4)), (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(nearest(2).keys[0].controllers[0].otherPairs, 2u);
}

TEST(ExplainFilter, OfNoNumberHasAtMostTenThousandPairs) {
  const auto computer = OnePort();
  std::string personalities;
  for (std::size_t i = 0; i < MaxPairs; ++i) personalities += "<dict/>";
  const auto whole = ExplainText(computer, UsbcKey(personalities));
  EXPECT_EQ(whole.keys[0].controllers[0].otherPairs, 0u);
  const auto larger = ExplainText(computer, UsbcKey(personalities + "<dict/>"));
  EXPECT_EQ(larger.keys[0].controllers[0].pairs.size(), MaxPairs);
  EXPECT_EQ(larger.keys[0].controllers[0].otherPairs, 1u);
}

TEST(ExplainFilter, OfATypeOrAControllerHasNoOther) {
  auto computer = ThreePorts();
  computer.AddPort("cable", {{"Route String", 1}});
  const std::string configuration =
      "<dict><key>USBC</key><array/><key>LegacyUSBC</key><dict/><key>Notes</key><true/></dict>";
  const auto ofType = ExplainSelected(computer, configuration, {.types = Types::LegacyUsbc});
  EXPECT_FALSE(ofType.keys[0].isSelected);
  EXPECT_TRUE(ofType.keys[0].controllers.empty());
  EXPECT_TRUE(ofType.keys[1].isSelected);
  EXPECT_EQ(ofType.keys[1].controllers.size(), 3u);
  EXPECT_FALSE(ofType.keys[2].isSelected);
  const auto byName = ExplainSelected(computer, configuration, {.controller = "hpm1"});
  ASSERT_EQ(byName.keys[1].controllers.size(), 1u);
  EXPECT_EQ(byName.keys[1].controllers[0].number, 2u);
  EXPECT_EQ(byName.keys[1].controllerCount, 3u);
  EXPECT_TRUE(byName.keys[1].skipped.empty());
  const auto byPath = ExplainSelected(computer, configuration, {.controller = "IOService:/cable"});
  EXPECT_TRUE(byPath.keys[1].controllers.empty());
  EXPECT_EQ(byPath.keys[1].skipped.size(), 1u);
}

TEST(Explanation, OfABoardThatThePayloadLacksNamesNearOnes) {
  const testing::TemporaryDirectory payload;
  for (const char* board : {"zed-42", "Zed-43", "Zed-4200", "Zed-24", "Zed-421", "Other"}) {
    payload.Write("Fernwick/" + std::string(board) + "/Config.plist", "<dict/>");
  }
  payload.Write("Fernwick/Zed-4", "a file");
  const auto computer = OnePort();
  const auto explanation = Explain(computer.Recorded(), ToolOptions(payload.Path(), false));
  EXPECT_EQ(explanation.end, RunEnd::NoConfiguration);
  EXPECT_EQ(explanation.nearBoards, (Texts{"zed-42", "Zed-24", "Zed-421"}));
  const testing::TemporaryDirectory empty;
  EXPECT_TRUE(Explain(computer.Recorded(), ToolOptions(empty.Path(), false)).nearBoards.empty());
}

TEST(Explanation, OfABoardWithoutAConfigurationNamesNoOther) {
  const testing::TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/port.bin", "");
  payload.Write("Fernwick/Zed-43/Config.plist", "<dict/>");
  const auto computer = OnePort();
  const auto explanation = Explain(computer.Recorded(), ToolOptions(payload.Path(), false));
  EXPECT_TRUE(explanation.nearBoards.empty());
}

TEST(Explanation, OfABoardDirectoryThatMayNotBeEnteredHasTheError) {
  const testing::TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/Config.plist", "<dict/>");
  const auto board = payload.Path() + "/Fernwick/Zed-42";
  std::filesystem::permissions(board, std::filesystem::perms::none);
  const auto computer = OnePort();
  const auto explanation = [&] {
    const testing::Unprivileged unprivileged;
    return Explain(computer.Recorded(), ToolOptions(payload.Path(), false));
  }();
  std::filesystem::permissions(board, std::filesystem::perms::owner_all);
  ASSERT_TRUE(explanation.configurationError);
  EXPECT_EQ(explanation.configurationError->status, 66);
  EXPECT_EQ(explanation.configurationError->error.message, "Permission denied");
}

TEST(Explanation, OfAPlanHasItsImagesAndWhichAreMissing) {
  const testing::TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/Config.plist",
                "<dict><key>USBC</key><array>"
                "<dict><key>Version</key><integer>180</integer><key>Firmware</key>"
                "<string>there.bin</string><key>Port Address</key><integer>0</integer>"
                "<key>Port Silicon Vendor ID</key><integer>1</integer>"
                "<key>Port Silicon Device ID</key><integer>2</integer>"
                "<key>Port Silicon Revision</key><integer>3</integer></dict></array>"
                "<key>LegacyUSBC</key><dict><key>Version</key><integer>172</integer>"
                "<key>Firmware</key><string>not.bin</string></dict></dict>");
  payload.Write("Fernwick/Zed-42/there.bin", "image");
  const auto computer = OnePort();
  const auto explanation = Explain(computer.Recorded(), ToolOptions(payload.Path(), false));
  ASSERT_TRUE(explanation.plan);
  const auto& images = explanation.plan->images;
  ASSERT_EQ(images.size(), 2u);
  EXPECT_FALSE(images[0].isMissing);
  EXPECT_EQ(images[0].installed, 171);
  EXPECT_EQ(images[0].version, 180);
  EXPECT_EQ(images[0].controller, "IOService:/hpm0");
  EXPECT_TRUE(images[1].isMissing);
  EXPECT_EQ(images[1].key, "LegacyUSBC");
}

TEST(Explanation, HasThePairsThatMatchInTheOrderOfThePlan) {
  const auto computer = ThreePorts();
  const auto explanation =
      ExplainText(computer,
                  "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>172</integer>"
                  "<key>Port Address</key><array><integer>2</integer><integer>0</integer></array>"
                  "<key>Firmware</key><string>port.bin</string></dict></dict>");
  const auto matched = MatchedPairs(explanation.run);
  const auto& controllers = explanation.keys.at(0).controllers;
  ASSERT_EQ(matched.size(), 2u);
  EXPECT_EQ(controllers[matched[0].controller].name, "hpm0");
  EXPECT_EQ(controllers[matched[1].controller].name, "hpm2");
  EXPECT_EQ(explanation.run.result.plannedMatches, 2u);
}

}  // namespace
}  // namespace fernwick::lab
