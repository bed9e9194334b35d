// The verb `draft` as a process.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/archives.h"
#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;

const std::string Ports = "../examples/ports-only.registry.plist";
const std::string Thunderbolt = "../examples/thunderbolt-only.registry.plist";

class Draft : public ::testing::Test {
 protected:
  ChildOutcome Lab(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command = {FERNWICK_LAB_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return testing::RunChild(command, FERNWICK_GOLDEN_DIRECTORY);
  }

  ChildOutcome Run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"draft", "--image", "ports-210.bin", "--version", "210"});
    return Lab(arguments);
  }

  testing::TemporaryDirectory directory_;
};

// The directory of the board is what a payload needs besides.
TEST_F(Draft, InAPayloadPlansTheUpdateAndLintFindsNothing) {
  const auto outcome = Run({Ports});
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardError, "");
  directory_.Write("Fernwick/Zed-1A07/Config.plist", outcome.standardOutput);
  directory_.Write("Fernwick/Zed-1A07/ports-210.bin", "image");
  directory_.Write("Fernwick/PortFlash.efi", "utility");
  ExpectOutcome(Lab({"lint", directory_.Path(), "--fail-level", "note"}),
                {"0", "1 board: 0 errors, 0 warnings, 0 notes\n", ""});
  const auto survey = Lab({"survey", "-p", directory_.Path(), "--format", "csv", Ports});
  EXPECT_NE(survey.standardError.find("3 matches"), std::string::npos) << survey.standardError;
}

TEST_F(Draft, IsTheSameForEveryNumberOfThreads) {
  const auto one = Run({"../examples", "--type", "LegacyThunderbolt", "-j", "1"});
  const auto many = Run({"../examples", "--type", "LegacyThunderbolt", "-j", "8"});
  EXPECT_EQ(one.status, "0");
  EXPECT_EQ(one.standardOutput, many.standardOutput);
  EXPECT_EQ(one.standardError, many.standardError);
  EXPECT_EQ(
      one.standardError,
      "fernwick-lab: the computers are of several boards, each of which needs the draft in its own "
      "directory: Zed-1A05, Zed-1A06, Zed-1A07, Zed-1A08, Zed-1A09\n");
}

TEST_F(Draft, NeedsATypeWhereThereAreSeveral) {
  ExpectOutcome(
      Run({Ports, Thunderbolt}),
      {"64", "",
       "fernwick-lab: the computers have controllers of several types, and --type selects one: "
       "LegacyThunderbolt (2 controllers), USBC (3 controllers)\n"});
}

TEST_F(Draft, NamesWhatCannotMatchOrBeDistinguished) {
  const auto newer =
      Lab({"draft", "--image", "a", "--version", "24", Thunderbolt, "--except", Thunderbolt});
  EXPECT_EQ(newer.status, "1");
  EXPECT_EQ(newer.standardOutput, "");
  EXPECT_NE(newer.standardError.find(" cannot be distinguished from the excepted ../examples/"),
            std::string::npos)
      << newer.standardError;
  const auto older = Lab({"draft", "--image", "a", "--version", "1", Thunderbolt});
  EXPECT_EQ(older.status, "1");
  EXPECT_EQ(older.standardOutput, "");
  EXPECT_TRUE(older.standardError.ends_with(
      " is not older\nfernwick-lab: no controller of these computers can match\n"))
      << older.standardError;
}

TEST_F(Draft, PrintsAHundredMessagesOfAKind) {
  std::string ports;
  for (int i = 0; i < 102; ++i) {
    ports +=
        "<dict><key>Name</key><string>hpm</string><key>Class</key>"
        "<string>QuinceHPMDevice</string><key>Properties</key><dict><key>Address</key>"
        "<integer>" +
        std::to_string(i) + "</integer></dict></dict>";
  }
  const auto path = directory_.Write(
      "many.registry.plist",
      "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
      "<key>IOService</key><dict><key>Children</key><array>" +
          ports + "</array></dict></dict></dict>");
  const auto outcome = Run({path});
  EXPECT_EQ(outcome.status, "1");
  EXPECT_TRUE(
      outcome.standardError.ends_with("fernwick-lab: and 2 more of this kind\n"
                                      "fernwick-lab: no controller of these computers can match\n"))
      << outcome.standardError;
}

TEST_F(Draft, NeedsRecordingsThatRunToTheirEnd) {
  const std::string none = "../examples/no-supported-hardware.registry.plist";
  ExpectOutcome(
      Run({"recordings/no-uid.registry.plist"}),
      {"65", "",
       "fernwick-lab: recordings/no-uid.registry.plist: a Thunderbolt controller without a \"UID\" "
       "ends every run abnormally\n"});
  ExpectOutcome(Run({Ports, "--except", "none"}),
                {"66", "", "fernwick-lab: none: No such file or directory\n"});
  ExpectOutcome(Run({none}), {"1", "", "fernwick-lab: these computers have no controllers\n"});
  std::filesystem::create_directory(directory_.Path() + "/empty");
  ExpectOutcome(Run({directory_.Path() + "/empty"}),
                {"66", "", "fernwick-lab: there is no recording in what is selected\n"});
}

std::string Example(const std::string& name) {
  return testing::ReadFile(FERNWICK_SOURCE_DIRECTORY "/" + name + ".registry.plist");
}

// Every failure but a lack of memory or descriptors, which says nothing about the file.
TEST_F(Draft, LeavesOutFilesOfADirectoryThatNoRunCanUse) {
  directory_.Write("all/broken.registry.plist", "<plist");
  directory_.Write("all/no-uid.registry.plist", Example("golden/recordings/no-uid"));
  directory_.Write("all/ports.registry.plist", Example("examples/ports-only"));
  const auto all = directory_.Path() + "/all";
  const auto absent = all + "/without-a-target.registry.plist";
  std::filesystem::create_symlink("absent", absent);
  const auto errors = Run({all + "/broken.registry.plist"});
  EXPECT_EQ(errors.status, "65");
  const std::string prefix = "fernwick-lab: ";
  const auto message = errors.standardError.substr(prefix.size());
  const auto noUid =
      all +
      "/no-uid.registry.plist: a Thunderbolt controller without a \"UID\" ends every run "
      "abnormally\n";
  const auto noTarget = absent + ": No such file or directory\n";
  const auto leftOut = prefix + "left out: " + message + prefix + "left out: " + noUid + prefix +
                       "left out: " + noTarget;
  const auto draft = Run({Ports}).standardOutput;
  ExpectOutcome(Run({all}), {"0", draft, leftOut});
  ExpectOutcome(Run({all, absent}), {"66", "", leftOut + prefix + noTarget});
  ExpectOutcome(Run({Ports, "--except", all + "/no-uid.registry.plist"}),
                {"65", "", prefix + noUid});
  const auto excepted = Run({Ports, "--except", all});
  EXPECT_EQ(excepted.status, "1");
  EXPECT_TRUE(excepted.standardError.starts_with(leftOut + prefix + Ports))
      << excepted.standardError;
}

// A run that lists the ports alone ends normally, and would match them.
TEST_F(Draft, SeesExceptedPortsBesideAThunderboltControllerWithoutAUid) {
  const std::string port =
      "<dict><key>Name</key><string>hpm0</string><key>Class</key><string>QuinceHPMDevice</string>"
      "<key>Properties</key><dict><key>Vendor ID</key><integer>1</integer><key>Device ID</key>"
      "<integer>2</integer><key>Revision ID</key><integer>3</integer><key>Version</key>"
      "<integer>4</integer></dict></dict>";
  const std::string ridge =
      "<dict><key>Name</key><string>ridge0</string><key>Class</key><string>IOThunderboltSwitch"
      "</string><key>Properties</key><dict><key>Depth</key><integer>0</integer><key>Route String"
      "</key><integer>0</integer></dict></dict>";
  const auto write = [&](const std::string& name, const std::string& children) {
    return directory_.Write(
        name,
        "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
        "<key>IOService</key><dict><key>Children</key><array>" +
            children + "</array></dict></dict></dict>");
  };
  const auto wanted = write("wanted.registry.plist", port);
  const auto excepted = write("excepted/a.registry.plist", port + ridge);
  ExpectOutcome(Run({wanted, "--except", directory_.Path() + "/excepted"}),
                {"1", "",
                 "fernwick-lab: " + excepted +
                     ": its Thunderbolt controllers are left out: one without a \"UID\" ends every "
                     "run that lists them\nfernwick-lab: " +
                     wanted + ": IOService:/hpm0 cannot be distinguished from the excepted " +
                     excepted + ": IOService:/hpm0\n"});
}

TEST_F(Draft, LeavesOutMembersOfAnArchiveThatNoRunCanUse) {
  const auto archive = directory_.Write(
      "all.tar", testing::ArchiveOf({
                     {"no-uid.registry.plist", Example("golden/recordings/no-uid")},
                     {"link.registry.plist", "", AE_IFLNK, "ports.registry.plist"},
                     {"ports.registry.plist", Example("examples/ports-only")},
                 }));
  const auto outcome = Run({archive});
  ExpectOutcome(outcome, {"0", Run({Ports}).standardOutput,
                          "fernwick-lab: left out: " + archive +
                              ":no-uid.registry.plist: a Thunderbolt controller without a \"UID\" "
                              "ends every run abnormally\nfernwick-lab: left out: " +
                              archive +
                              ":link.registry.plist: a link, which is not followed in an "
                              "archive\n"});
}

// They read another configuration, and so match nothing of this one.
TEST_F(Draft, LeavesOutExceptedComputersOfOtherBoards) {
  const auto draft = Run({Ports}).standardOutput;
  ExpectOutcome(Run({Ports, "--except", Thunderbolt}),
                {"0", draft,
                 "fernwick-lab: left out: 1 excepted computer that reads the configuration of "
                 "another board\n"});
  directory_.Write("others/a.registry.plist", Example("examples/thunderbolt-only"));
  directory_.Write("others/b.registry.plist", Example("examples/up-to-date"));
  ExpectOutcome(Run({Ports, "--except", directory_.Path()}),
                {"0", draft,
                 "fernwick-lab: left out: 2 excepted computers that read the configuration of "
                 "another board\n"});
}

TEST_F(Draft, NeedsAnImageAndAVersion) {
  const auto refuse = [&](const std::vector<std::string>& arguments, const std::string& message) {
    std::vector<std::string> command = {"draft", Ports};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ExpectOutcome(Lab(command),
                  {"64", "", "fernwick-lab: " + message + "; see fernwick-lab draft --help\n"});
  };
  for (const char* image : {"", ".", "..", "Config.plist", "a/b", "\xFF"}) {
    refuse({"--image", image, "--version", "1"},
           "--image is the name of a file in the board's directory");
  }
  for (const char* version : {"", "a", "nan", "1e5", "0x10", "1.2.3", "1a"}) {
    refuse({"--image", "a", "--version", version}, "--version is a decimal number");
  }
  refuse({"--image", "a", "--version", "1", "--except", "-", "-"},
         "standard input cannot be both the recordings and those of --except");
  ExpectOutcome(Lab({"draft", Ports, "--image", "a", "--version", "200.5"}),
                {"64", "",
                 "fernwick-lab: --version 200.5 would be installed again and again: a port reports "
                 "whole numbers, a Thunderbolt controller hundredths up to .63, each of eight "
                 "digits at most\n"});
}

}  // namespace
}  // namespace fernwick
