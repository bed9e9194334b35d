// The verb `sample` as a process.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;

constexpr char Configuration[] =
    "{ LegacyUSBC = { Version = 5; };\n"
    "  USBC = ( { Firmware = a; } , seven ); Thunderbolt = dead; }";

class Sample : public ::testing::Test {
 protected:
  ChildOutcome Run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "sample"});
    return testing::RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY);
  }

  // What the tool prints over the file.
  ChildOutcome Replay(const std::string& recording) const {
    return testing::RunChild(
        {FERNWICK_LAB_PROGRAM, "replay", recording, "-v", "-p", "../examples/payload"},
        FERNWICK_GOLDEN_DIRECTORY);
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(Sample, IsARecordingThatThePersonalityMatches) {
  const auto path = directory_.Path() + "/sample.registry.plist";
  ExpectOutcome(Run({"-p", "../examples/payload", "Zed-1A05", "--personality", "Thunderbolt:2",
                     "-o", path, "--to", "binary"}),
                {"0", "", ""});
  EXPECT_TRUE(testing::ReadFile(path).starts_with("bplist00"));
  const auto outcome = Replay(path);
  EXPECT_EQ(outcome.status, "0");
  EXPECT_NE(outcome.standardOutput.find("ridge-right-43.10.bin"), std::string::npos);
}

TEST_F(Sample, GoesToStandardOutputAndIsThatOfTheFirstPersonality) {
  const auto outcome = Run({"-p", "../examples/payload", "Zed-1A07"});
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardError, "sample of LegacyUSBC:1\n");
  const auto path = directory_.Write("sample.registry.plist", outcome.standardOutput);
  EXPECT_NE(Replay(path).standardOutput.find("ports-200.bin"), std::string::npos);
}

TEST_F(Sample, OfEachPersonalityIsAFile) {
  const auto first = directory_.Path() + "/Zed-1A05-Thunderbolt-1.registry.plist";
  const auto second = directory_.Path() + "/Zed-1A05-Thunderbolt-2.registry.plist";
  const std::vector<std::string> command = {"-p", "../examples/payload", "Zed-1A05", "--all",
                                            directory_.Path()};
  ExpectOutcome(Run(command), {"0", first + "\n" + second + "\n", ""});
  EXPECT_EQ(Replay(second).status, "0");
  ExpectOutcome(Run(command), {"74", "",
                               "fernwick-lab: " + first +
                                   ": there is a file of that name; --force replaces it\n"});
}

TEST_F(Sample, SaysWhyThereIsNone) {
  const auto path = directory_.Write("Fernwick/Zed-42/Config.plist", Configuration);
  const auto prefix = "fernwick-lab: " + path;
  const auto payload = directory_.Path();
  const std::string first =
      prefix +
      ":1:16: LegacyUSBC:1: it can never match: \"Version\" is \"5\"; only a number can match\n";
  const std::string second =
      prefix +
      ":2:12: USBC:1: it can never match: without \"Port Silicon Device ID\" a personality of "
      "\"USBC\" never matches; without \"Port Silicon Revision\" a personality of \"USBC\" never "
      "matches; without \"Port Silicon Vendor ID\" a personality of \"USBC\" never matches; "
      "without \"Version\" a personality of \"USBC\" never matches unless the version check is "
      "bypassed\n";
  const auto third = prefix + ":2:32: USBC:2: it is a string, not a dictionary\n";
  const auto fourth = prefix +
                      ":2:55: \"Thunderbolt\" is \"dead\", not an array of personalities, so it "
                      "matches nothing\n";
  ExpectOutcome(Run({"-p", payload, "Zed-42"}), {"1", "",
                                                 first + second + third + fourth + prefix +
                                                     ": there is no sample of any personality\n"});
  ExpectOutcome(Run({"-p", payload, "Zed-42", "--all", payload}),
                {"1", "", first + second + third + fourth});
  ExpectOutcome(Run({"-p", payload, "Zed-42", "--personality", "USBC:2"}), {"1", "", third});
  ExpectOutcome(Run({"-p", payload, "Zed-42", "--personality", "USBC:3"}),
                {"1", "", prefix + ": there is no personality 3 of \"USBC\": it has 2\n"});
  ExpectOutcome(Run({"-p", payload, "Zed-42", "--personality", "Thunderbolt:1"}),
                {"1", "", fourth});
  ExpectOutcome(
      Run({"-p", payload, "Zed-42", "--personality", "LegacyThunderbolt:1"}),
      {"1", "", prefix + ": there is no personality 1 of \"LegacyThunderbolt\": it has none\n"});
}

TEST_F(Sample, SaysWhichTypesHaveTheWrongShape) {
  const auto path =
      directory_.Write("Fernwick/Zed-42/Config.plist", "{ LegacyUSBC = ( ); USBC = { a = b; }; }");
  const auto prefix = "fernwick-lab: " + path;
  const auto legacy = testing::RunChild({FERNWICK_LAB_PROGRAM, "sample", "-p", directory_.Path(),
                                         "Zed-42", "--personality", "LegacyUSBC:1"},
                                        FERNWICK_GOLDEN_DIRECTORY);
  EXPECT_EQ(legacy.status, "1");
  EXPECT_TRUE(legacy.standardError.starts_with(prefix + ":1:16: \"LegacyUSBC\" is "))
      << legacy.standardError;
  EXPECT_TRUE(
      legacy.standardError.ends_with(", not a single personality, so it matches nothing\n"));
  const auto first = Run({"-p", directory_.Path(), "Zed-42"});
  EXPECT_EQ(first.status, "1");
  EXPECT_TRUE(first.standardError.starts_with(legacy.standardError));
  EXPECT_NE(first.standardError.find("\"USBC\" is "), std::string::npos);
  const auto all = Run({"-p", directory_.Path(), "Zed-42", "--all", directory_.Path()});
  EXPECT_EQ(all.status, "1");
  EXPECT_TRUE(first.standardError.starts_with(all.standardError));
}

TEST_F(Sample, IsRefusedForEachOfTooManyPersonalities) {
  std::string text = "{ USBC = (";
  for (int i = 0; i < 1001; ++i) text += " a ,";
  const auto path = directory_.Write("Fernwick/Zed-42/Config.plist", text + "); }");
  ExpectOutcome(Run({"-p", directory_.Path(), "Zed-42", "--all", directory_.Path()}),
                {"64", "", "fernwick-lab: " + path + ": it has more than 1000 personalities\n"});
}

TEST_F(Sample, IsLookedForAmongTheFirstPersonalitiesAlone) {
  std::string text = "{ USBC = (";
  for (int i = 0; i < 1001; ++i) text += " a ,";
  const auto path = directory_.Write("Fernwick/Zed-42/Config.plist", text + "); }");
  const auto outcome = Run({"-p", directory_.Path(), "Zed-42"});
  EXPECT_EQ(outcome.status, "1");
  EXPECT_TRUE(outcome.standardError.ends_with(
      "fernwick-lab: " + path +
      ": there is no sample of the first 1000 personalities; --personality names another\n"))
      << outcome.standardError;
}

TEST_F(Sample, NeedsOptionsThatAgree) {
  const auto refuse = [&](std::vector<std::string> arguments, const std::string& message) {
    arguments.insert(arguments.begin(), {"-p", "../examples/payload"});
    ExpectOutcome(Run(arguments),
                  {"64", "", "fernwick-lab: " + message + "; see fernwick-lab sample --help\n"});
  };
  for (const char* board : {"", ".", "..", "a/b"}) {
    refuse({board}, "BOARD is the name of a directory in Fernwick/");
  }
  refuse({"\xFF"}, "BOARD is not UTF-8, so no computer has this identifier");
  refuse({"Zed-42", "--all", "a", "--personality", "USBC:1"}, "--all excludes --personality");
  refuse({"Zed-42", "--all", "a", "-o", "b"}, "--all excludes --output");
  for (const char* personality :
       {"USBC", "USBC:", "USBC:0", "USBC:1x", "USBC:99999999999999999999"}) {
    refuse({"Zed-42", "--personality", personality},
           "--personality is a type, a colon and a number from 1");
  }
  refuse({"Zed-42", "--personality", "Usbc:1"},
         "--personality: there is no type \"Usbc\" (did you mean \"USBC\"?)");
}

TEST_F(Sample, NeedsAConfigurationAndAFileThatCanBeWritten) {
  ExpectOutcome(Run({"-p", "none", "Zed-42"}),
                {"66", "", "fernwick-lab: none/Fernwick: there is no such directory\n"});
  ExpectOutcome(Run({"-p", "../examples/payload", "Zed-42"}),
                {"66", "",
                 "fernwick-lab: ../examples/payload/Fernwick/Zed-42/Config.plist: No such file or "
                 "directory\n"});
  EXPECT_EQ(Run({"-p", "payloads/truncated", "Zed-42"}).status, "65");
  const auto out = directory_.Write("there", "");
  ExpectOutcome(
      Run({"-p", "../examples/payload", "Zed-1A05", "-o", out}),
      {"74", "", "fernwick-lab: " + out + ": there is a file of that name; --force replaces it\n"});
}

}  // namespace
}  // namespace fernwick
