#include "lab/explain/explanation.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "driver/bypass_switch.h"
#include "lab/explain/print.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/temporary_directory.h"

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
