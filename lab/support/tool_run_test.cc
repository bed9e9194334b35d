#include "lab/support/tool_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <vector>

#include "testing/computer.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"

namespace fernwick::lab {
namespace {

TEST(ToolOptions, AreThoseOfItsCommandLine) {
  EXPECT_EQ(ToolOptions("/p", false).personalitiesDirectory, "/p/Fernwick/");
  EXPECT_FALSE(ToolOptions("/p", false).bypassVersionCheck);
  EXPECT_TRUE(ToolOptions("-v", true).bypassVersionCheck);
  EXPECT_EQ(ToolOptions("-v", true).personalitiesDirectory, "-v/Fernwick/");
  EXPECT_FALSE(ToolOptions("-v", true).verbose);
  EXPECT_EQ(ToolOptions("\xFF", false).personalitiesDirectory, std::nullopt);
}

// Three ports and a personality for the two whose version is below 0x171.
class Tool : public ::testing::Test {
 protected:
  Tool() {
    computer_.SetBoard("Zed-42", 3);
    for (const int version : {0x170, 0x171, 0x169}) {
      computer_.AddPort("hpm", {{"Version", version}, {"Address", version}});
    }
    payload_.Write("Fernwick/Zed-42/Config.plist",
                   "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>171</integer>"
                   "<key>Firmware</key><string>f.bin</string></dict></dict>");
  }

  ToolRun Run() const { return RunTool(computer_.Recorded(), ToolOptions(payload_.Path(), false)); }

  testing::Computer computer_;
  testing::TemporaryDirectory payload_;
};

TEST_F(Tool, IsRunWithAllThatItPrintsAndDecides) {
  const auto run = Run();
  EXPECT_EQ(run.result.status, 0);
  EXPECT_TRUE(run.standardOutput.ends_with("</plist>\n"));
  EXPECT_EQ(run.standardError, "");
  EXPECT_EQ(run.result.matches.size(), 2u);
  ASSERT_EQ(run.trace.keys.size(), 1u);
  EXPECT_EQ(run.trace.keys[0].inventory.records.size(), 3u);
}

TEST_F(Tool, ThatEndsWithAFaultIsAResultToo) {
  computer_.Set(computer_.Options(), "boot-args", "fernwick_bypassversioncheck");
  const auto run = Run();
  EXPECT_EQ(run.result.fault, Fault::BareSwitch);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_EQ(run.standardError, "");
  EXPECT_TRUE(MatchedPairs(run).empty());
}

TEST_F(Tool, CountsItsDiagnosticsAlsoWhereNoTextsAreKept) {
  payload_.Write("Fernwick/Zed-42/Config.plist",
                 "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>999</integer>"
                 "<key>Existing Min Version</key><integer>998</integer></dict></dict>");
  const auto options = ToolOptions(payload_.Path(), false);
  const std::vector<DiagnosticCount> counts = {{"** Min firmware version not met.  Aborting", 3}};
  const auto run = RunTool(computer_.Recorded(), options, KeptOutput::Counts);
  EXPECT_EQ(run.diagnostics, counts);
  EXPECT_EQ(run.standardError, "");
  EXPECT_EQ(Run().diagnostics, counts);
  EXPECT_NE(Run().standardError, "");
}

// The file has another one, which is not read.
TEST_F(Tool, MatchesTheConfigurationThatItsCallerReturns) {
  const auto options = ToolOptions(payload_.Path(), false);
  std::optional<std::string> board;
  const auto load = [&](const std::optional<std::string>& boardIdString,
                        const std::optional<std::string>& directory, Console&) {
    EXPECT_EQ(directory, options.personalitiesDirectory);
    board = boardIdString;
    return *ReadPropertyList(
                "<dict><key>LegacyUSBC</key><dict><key>Version</key>"
                "<integer>170</integer><key>Firmware</key><string>f</string>"
                "</dict></dict>")
                .list;
  };
  const auto run = RunTool(computer_.Recorded(), options, KeptOutput::Texts, load);
  EXPECT_EQ(board, "Zed-42");
  ASSERT_EQ(run.result.matches.size(), 1u);
  EXPECT_EQ(run.result.matches[0].Find("Version")->AsInteger(), 170);
}

class UnreadConfiguration : public Tool {
 protected:
  std::optional<LabError> Failure() const {
    return UnreadableConfiguration(Run(), ToolOptions(payload_.Path(), false));
  }

  const std::string board_ = payload_.Path() + "/Fernwick/Zed-42";
};

TEST_F(UnreadConfiguration, ThatIsThereOrAbsentOrMalformedIsNoFailure) {
  EXPECT_FALSE(Failure());
  EXPECT_FALSE(MalformedConfiguration(Run()));
  payload_.Write("Fernwick/Zed-42/Config.plist", "<dict>");
  EXPECT_FALSE(Failure());
  EXPECT_EQ(MalformedConfiguration(Run()).value().location.value().column, 7u);
  std::filesystem::remove_all(board_);
  EXPECT_FALSE(Failure());
  EXPECT_FALSE(MalformedConfiguration(Run()));
  EXPECT_FALSE(UnreadableConfiguration(RunTool(computer_.Recorded(), {}), {}));
}

TEST_F(UnreadConfiguration, ThatMayNotBeReadIsAFailure) {
  namespace fs = std::filesystem;
  fs::permissions(payload_.Path(), fs::perms(0755));
  for (const auto& path : {board_ + "/Config.plist", board_}) {
    fs::permissions(path, fs::perms::none);
    {
      const testing::Unprivileged unprivileged;
      const auto failure = Failure();
      ASSERT_TRUE(failure) << path;
      EXPECT_EQ(failure->error.message, board_ + "/Config.plist: Permission denied");
      EXPECT_EQ(failure->status, LabStatus::UnreadableInput);
      EXPECT_FALSE(MalformedConfiguration(Run()));
    }
    fs::permissions(path, fs::perms::owner_all);
  }
}

// Those of a run that ends with a fault later are dropped with its matches.
TEST_F(Tool, ThatEndsWithAFaultHasNoMatchedPairs) {
  computer_.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  payload_.Write("Fernwick/Zed-42/Config.plist",
                 "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>171</integer></dict>"
                 "<key>LegacyThunderbolt</key><array/></dict>");
  const auto run = Run();
  EXPECT_EQ(run.result.fault, Fault::MissingUid);
  EXPECT_EQ(run.trace.keys.size(), 1u);
  EXPECT_TRUE(MatchedPairs(run).empty());
}

TEST_F(Tool, RunsOverOneRecordingOnSeveralThreads) {
  const auto options = ToolOptions(payload_.Path(), false);
  const auto expected = Run().standardOutput;
  std::vector<std::string> found(4);
  std::vector<std::thread> threads;
  for (auto& output : found) {
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) output = RunTool(computer_.Recorded(), options).standardOutput;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(found, std::vector<std::string>(4, expected));
}

HardwareRecord Controller(int rid) {
  return {{"RID", rid}};
}

TEST(MatchedPairs, AreThoseThatMatchedInTheOrderOfThePlan) {
  ToolRun run;
  run.trace.keys = {{.key = "Other", .inventory = {.records = {Controller(0)}}},
                    {.key = "USBC",
                     .inventory = {.records = {Controller(0), Controller(1), Controller(2)}},
                     .isPersonality = {true, true, true},
                     .matched = {1, KeyTrace::NoMatch, 0}},
                    {.key = "LegacyUSBC",
                     .inventory = {.records = {Controller(0), Controller(1)}},
                     .isPersonality = {true},
                     .matched = {KeyTrace::NoMatch, 0}}};
  run.result.matches = {{{"Firmware", "a"}}, {{"Firmware", "b"}}, {{"Firmware", "c"}}};
  std::string found;
  for (const auto& pair : MatchedPairs(run)) {
    EXPECT_EQ(pair.Controller(), Controller(static_cast<int>(pair.controller)));
    found += std::string(pair.key->key) + " " + std::to_string(pair.controller) + " " +
             std::to_string(pair.personality) + " " +
             std::string(*pair.match->Find("Firmware")->AsString()) + "\n";
  }
  EXPECT_EQ(found, "USBC 0 1 a\nUSBC 2 0 b\nLegacyUSBC 1 0 c\n");
}

}  // namespace
}  // namespace fernwick::lab
