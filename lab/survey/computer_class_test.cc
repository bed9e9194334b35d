#include "lab/survey/computer_class.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "lab/survey/row.h"
#include "lab/survey/text.h"
#include "testing/computer.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::Computer;

// A computer of the board "Zed-42" and revision 3 with one port of version 171 at the address 56.
Computer OnePort() {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort("hpm0", {{"Version", 0x171}, {"Address", 56}});
  return computer;
}

// The class and the nearest miss of the computer, in words.
std::string Classified(const Computer& computer, std::string_view configuration,
                       const std::string& file = "Fernwick/Zed-42/Config.plist") {
  const testing::TemporaryDirectory payload;
  payload.Write(file, configuration);
  const auto options = ToolOptions(payload.Path(), false);
  const auto run = RunTool(computer.Recorded(), options);
  const auto [computerClass, miss] = Classify(run, computer.Recorded(), options);
  return std::string(NameOf(computerClass)) + (miss ? ": " + MissText(*miss) : "");
}

constexpr char OfPort[] = " (LegacyUSBC, the personality on IOService:/hpm0)";

TEST(ComputerClass, IsPlannedWhateverOtherControllersAre) {
  auto computer = OnePort();
  computer.AddPort("hpm1", {{"Version", 0x300}});
  EXPECT_EQ(Classified(computer,
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>200</integer>"
                       "<key>Firmware</key><string>f</string></dict></dict>"),
            "planned");
}

TEST(ComputerClass, IsCurrentWhereTheVersionAloneIsNotNewer) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>171</integer>"
                       "</dict></dict>"),
            "current: Version 171 is not newer than the installed 171" + std::string(OfPort));
}

TEST(ComputerClass, IsCurrentAlsoAboveTheMaximum) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>170</integer>"
                       "<key>Existing Max Version</key><integer>160</integer></dict></dict>"),
            "current: Version 170 is not newer than the installed 171" + std::string(OfPort));
}

// Though the other personality is as near.
TEST(ComputerClass, IsCurrentBeforeItIsBlocked) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>USBC</key><array><dict><key>Version</key><integer>180</integer>"
                       "<key>MinBoardRevision</key><integer>4</integer></dict></array>"
                       "<key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer></dict>"
                       "</dict>"),
            "current: Version 9 is not newer than the installed 171" + std::string(OfPort));
}

TEST(ComputerClass, IsBlockedByTheWindow) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>180</integer>"
                       "<key>Existing Max Version</key><integer>160</integer></dict></dict>"),
            "blocked: Existing Max Version 160 is below the installed 171" + std::string(OfPort));
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
                       "<key>Existing Min Version</key><integer>172</integer></dict></dict>"),
            "blocked: Version 9 is not newer than the installed 171" + std::string(OfPort));
}

// It is met by no version, so that an older one would not be updated either.
TEST(ComputerClass, IsBlockedByAMaximumThatIsNoNumber) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
                       "<key>Existing Max Version</key><string>160</string></dict></dict>"),
            "blocked: Version 9 is not newer than the installed 171" + std::string(OfPort));
}

TEST(ComputerClass, IsBlockedByAVersionThatIsMissingOrNoNumber) {
  EXPECT_EQ(Classified(OnePort(), "{ LegacyUSBC = {}; }"),
            "blocked: Version is missing; the controller has 171" + std::string(OfPort));
  EXPECT_EQ(Classified(OnePort(), "{ LegacyUSBC = { Version = 5; }; }"),
            "blocked: Version \"5\" is not a number and not newer than the installed 171" +
                std::string(OfPort));
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort("hpm0", {});
  EXPECT_EQ(Classified(computer,
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
                       "</dict></dict>"),
            "blocked: Version wants 9, but the controller has none" + std::string(OfPort));
  EXPECT_EQ(Classified(computer,
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>0</integer>"
                       "</dict></dict>"),
            "blocked: Version 0 is not newer than any version that the controller could have" +
                std::string(OfPort));
}

TEST(ComputerClass, IsBlockedByAMatchWithoutAnImage) {
  const auto with = [](const std::string& firmware) {
    return "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>200</integer>" + firmware +
           "</dict></dict>";
  };
  EXPECT_EQ(Classified(OnePort(), with("")), "blocked: Firmware is missing" + std::string(OfPort));
  EXPECT_EQ(Classified(OnePort(), with("<key>Firmware</key><integer>5</integer>")),
            "blocked: Firmware 5 names no image" + std::string(OfPort));
}

TEST(ComputerClass, IsUnmatchedWhereTheNearestIsForAnotherController) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>200</integer>"
                       "<key>Port Address</key><integer>32</integer></dict></dict>"),
            "unmatched: Port Address wants 32, finds 56" + std::string(OfPort));
}

TEST(ComputerClass, IsUnmatchedWithoutAPair) {
  EXPECT_EQ(Classified(OnePort(), "{ USBC = (); Notes = x; LegacyThunderbolt = ({}); }"),
            "unmatched");
}

TEST(ComputerClass, OfAMissSaysWhichPersonality) {
  EXPECT_EQ(Classified(OnePort(),
                       "<dict><key>USBC</key><array><string>x</string><dict><key>Version</key>"
                       "<integer>9</integer><key>Port Silicon Vendor ID</key><integer>1</integer>"
                       "</dict></array></dict>")
                .substr(0, 9),
            "unmatched");
  EXPECT_TRUE(Classified(OnePort(), "{ USBC = ( x, { Version = 5; } ); }")
                  .ends_with("(USBC, personality 2 on IOService:/hpm0)"));
}

TEST(ComputerClass, IsNoControllersWhereBothInventoriesAreEmpty) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  EXPECT_EQ(Classified(computer, "{ LegacyUSBC = {}; }"), "no controllers");
  computer.AddThunderbolt("ridge0", {{"UID", 17}, {"Depth", 0}, {"Route String", 0}});
  EXPECT_EQ(Classified(computer, "{ LegacyUSBC = {}; }"), "unmatched");
  EXPECT_EQ(Classified(OnePort(), "{ LegacyThunderbolt = (); }"), "unmatched");
}

// No key of the configuration asks for the inventory, so the run does not end abnormally.
TEST(ComputerClass, CountsControllersThatEndAnInventory) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddService(computer.Services(), "ridge0", "IOThunderboltSwitch",
                      {{"Depth", 0}, {"Route String", 0}});
  EXPECT_EQ(Classified(computer, "{ LegacyUSBC = {}; }"), "unmatched");
  EXPECT_EQ(Classified(computer, "{ LegacyThunderbolt = (); }"), "fault");
  Computer below;
  below.SetBoard("Zed-42", 3);
  const auto ridge = below.AddService(below.Services(), "ridge0", "IOThunderboltSwitch", {});
  below.AddService(ridge, "hpm0", "QuinceHPMDevice", {});
  EXPECT_EQ(Classified(below, "{ LegacyThunderbolt = (); }"), "unmatched");
}

TEST(ComputerClass, OfABoardIsKnownByItsDirectory) {
  EXPECT_EQ(Classified(OnePort(), "{}", "Fernwick/Zed-43/Config.plist"), "unknown board");
  EXPECT_EQ(Classified(OnePort(), "", "Fernwick/Zed-42/a.bin"), "no configuration");
  EXPECT_EQ(Classified(OnePort(), "{", "Fernwick/Zed-42/Config.plist"), "no configuration");
  EXPECT_EQ(Classified(OnePort(), "()", "Fernwick/Zed-42/Config.plist"), "no configuration");
  EXPECT_EQ(Classified(Computer(), "{}"), "unknown board");
}

TEST(ComputerClass, IsBypassedWhateverThePayload) {
  auto computer = OnePort();
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates=1");
  EXPECT_EQ(Classified(computer, "{}"), "bypassed");
}

TEST(ComputerClass, HasAMissOfBoundedLength) {
  const auto text =
      Classified(OnePort(), "{ LegacyUSBC = { Version = " + std::string(9999, 'x') + "; }; }");
  EXPECT_LT(text.size(), 1000u);
  EXPECT_NE(text.find("bytes)"), std::string::npos);
}

TEST(ComputerClass, HasAWordForEach) {
  EXPECT_EQ(ClassWords(),
            "planned, current, blocked, unmatched, no-controllers, unknown-board, "
            "no-configuration, bypassed, fault, refused, abnormal, no-plan");
  for (std::size_t i = 0; i < ClassCount; ++i) {
    std::string word(ClassNames[i]);
    if (word.find(' ') != std::string::npos) word[word.find(' ')] = '-';
    EXPECT_EQ(ClassesOfWord(word), std::vector{static_cast<ComputerClass>(i)});
  }
  EXPECT_EQ(ClassesOfWord("abnormal"), std::vector{ComputerClass::Fault});
  EXPECT_EQ(ClassesOfWord("no-plan").size(), 6u);
  EXPECT_TRUE(ClassesOfWord("no plan").empty());
}

}  // namespace
}  // namespace fernwick::lab
