#include "lab/explain/explanation.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "driver/bypass_switch.h"
#include "lab/explain/failure_text.h"
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

Explanation ExplainText(const Computer& computer, std::string_view configuration) {
  const testing::TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/Config.plist", configuration);
  return Explain(computer.Recorded(), payload.Path(), false);
}

std::string PlaceText(const std::optional<FilePlace>& place) {
  return place ? Describe(*place) : "unknown";
}

const ExplainedFailure& FirstFailure(const Explanation& explanation, std::size_t controller) {
  return explanation.keys.at(0).controllers.at(controller).pairs.at(0).failures.at(0);
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

TEST(Explanation, OfKeysThatOccurTwiceHasThePlacesOfTheLast) {
  const auto explanation = ExplainText(ThreePorts(), TwoKeys);
  const auto& key = explanation.keys.at(0);
  EXPECT_EQ(PlaceText(key.place), "3:3");
  const auto& personality = key.personalities.at(0);
  EXPECT_EQ(PlaceText(personality.place), "3:16");
  EXPECT_EQ(personality.firmware, "new");
  ASSERT_EQ(personality.unread.size(), 1u);
  EXPECT_EQ(personality.unread.front().key, "Colour");
  EXPECT_EQ(PlaceText(personality.unread.front().place), "8:5");
}

TEST(Explanation, OfAMissingKeyHasNoPlace) {
  const auto explanation = ExplainText(ThreePorts(), TwoKeys);
  const auto& failure = FirstFailure(explanation, 0);
  EXPECT_EQ(failure.requirement.key, "Version");
  EXPECT_EQ(PlaceText(failure.wantedPlace), "unknown");
  const auto& address = explanation.keys.at(0).controllers.at(0).pairs.at(0).failures.at(1);
  EXPECT_EQ(address.requirement.key, "Port Address");
  EXPECT_EQ(PlaceText(address.wantedPlace), "4:22");
}

TEST(Explanation, TellsAUuidThatIsNotReadFromOneThatIsNotThere) {
  const auto explanation =
      ExplainText(ThreePorts(),
                  "<dict><key>USBC</key><array><dict><key>Version</key><integer>172</integer>"
                  "<key>Port UUID</key><array><string>A2</string></array></dict></array></dict>");
  for (const std::size_t controller : {1u, 2u}) {
    const auto& failures = explanation.keys.at(0).controllers.at(controller).pairs.at(0).failures;
    const auto& uuid = failures.back();
    EXPECT_EQ(uuid.requirement.key, "Port UUID");
    EXPECT_EQ(uuid.requirement.shortfall, Shortfall::HardwareLacksKey);
    EXPECT_EQ(uuid.isUuidUnread, controller == 2);
  }
}

TEST(Explanation, NamesTheEntryAndThePropertyOfAValue) {
  const auto explanation =
      ExplainText(ThreePorts(),
                  "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>171</integer>"
                  "</dict></dict>");
  const auto& failure = FirstFailure(explanation, 1);
  EXPECT_EQ(failure.requirement.found, 171);
  ASSERT_EQ(failure.sources->size(), 1u);
  EXPECT_EQ(failure.sources->front().path, "IOService:/hpm1");
  EXPECT_EQ(failure.sources->front().property, "Version");
  EXPECT_EQ(failure.sources->front().value, 0x171);
}

constexpr char FromRevision4[] =
    "<dict><key>USBC</key><array><dict><key>Version</key><integer>200</integer>"
    "<key>MinBoardRevision</key><integer>4</integer></dict></array></dict>";

TEST(Explanation, NamesThePropertyOfTheBoardRevision) {
  const auto explanation = ExplainText(ThreePorts(), FromRevision4);
  const auto& failure = FirstFailure(explanation, 0);
  EXPECT_EQ(failure.requirement.key, "MinBoardRevision");
  ASSERT_EQ(failure.sources->size(), 1u);
  const auto& source = failure.sources->front();
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
  EXPECT_EQ(SourceLines(FirstFailure(explanation, 0)),
            std::vector<std::string>{"\"board-rev\" of the device tree is absent"});
}

TEST(Explanation, OfABareSwitchShowsTheBootArguments) {
  auto computer = ThreePorts();
  computer.Set(computer.Options(), "boot-args", "-v fernwick_bypassversioncheck");
  const auto explanation = ExplainText(computer, "<dict/>");
  EXPECT_EQ(explanation.end, RunEnd::Abnormal);
  EXPECT_EQ(explanation.fault, BareSwitchFault);
  ASSERT_EQ(explanation.faultSources.size(), 1u);
  EXPECT_EQ(explanation.faultSources.front().value, "-v fernwick_bypassversioncheck");
  EXPECT_EQ(explanation.identity.boardIdString, "Zed-42");
}

TEST(Explanation, OfAMissingUidShowsTheControllersWithoutOne) {
  auto computer = ThreePorts();
  const Dictionary own = {{"Depth", 0}, {"Route String", 0}};
  computer.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}, {"UID", 1}});
  computer.AddThunderbolt("ridge1", own);
  const auto explanation =
      ExplainText(computer, "<dict><key>LegacyThunderbolt</key><array/></dict>");
  EXPECT_EQ(explanation.end, RunEnd::Abnormal);
  EXPECT_EQ(explanation.fault, MissingUidFault);
  ASSERT_EQ(explanation.faultSources.size(), 1u);
  EXPECT_EQ(explanation.faultSources.front().path, "IOService:/ridge1");
}

TEST(MatchedPairs, StandInTheOrderOfThePlan) {
  const auto explanation =
      ExplainText(ThreePorts(),
                  "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>172</integer>"
                  "<key>Port Address</key><array><integer>2</integer><integer>0</integer></array>"
                  "<key>Firmware</key><string>port.bin</string></dict></dict>");
  const auto matched = MatchedPairs(explanation);
  ASSERT_EQ(matched.size(), 2u);
  EXPECT_EQ(matched[0].controller->name, "hpm0");
  EXPECT_EQ(matched[1].controller->name, "hpm2");
  EXPECT_EQ(explanation.plannedMatchCount, 2u);
}

}  // namespace
}  // namespace fernwick::lab
