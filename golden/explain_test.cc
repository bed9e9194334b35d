// `explain` of the lab as a process: that its verdicts on the golden cases are the tool's own,
// and how it fails. What it prints, whole, is in the golden cases of golden/explanations.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "testing/programs/child_process.h"
#include "testing/programs/golden_case.h"
#include "testing/programs/report_lines.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::GoldenReplay;
using testing::ReportedMatch;

const fs::path GoldenDirectory = FERNWICK_GOLDEN_DIRECTORY;

ChildOutcome RunLab(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), FERNWICK_LAB_PROGRAM);
  return testing::RunChild(arguments, GoldenDirectory.string());
}

ChildOutcome RunVerb(std::string verb, std::vector<std::string> arguments, std::string option) {
  arguments.insert(arguments.begin(), std::move(verb));
  if (!option.empty()) arguments.push_back(std::move(option));
  return RunLab(arguments);
}

TEST(Explain, OfAConfigurationThatCannotBeReadIsAFailure) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/Fernwick/Zed-42/Config.plist";
  fs::create_directories(path);
  const auto outcome =
      RunLab({"explain", "recordings/typical.registry.plist", "-p", directory.Path()});
  EXPECT_EQ(outcome.status, "66");
  EXPECT_EQ(outcome.standardError, "fernwick-lab: " + path + ": Is a directory\n");
  EXPECT_NE(outcome.standardOutput.find("no configuration for this board"), std::string::npos);
}

// The matches of the explanation in the form of the tool's report.
std::vector<ReportedMatch> ExplainedMatches(const nlohmann::json& json) {
  std::vector<ReportedMatch> matches;
  for (const auto& key : json["keys"]) {
    for (const auto& controller : key["controllers"]) {
      for (const auto& pair : controller["pairs"]) {
        if (pair["outcome"] != "matched") continue;
        const auto& firmware =
            key["personalities"][pair["personality"].get<std::size_t>() - 1]["firmware"];
        const auto rid = controller["record"].value("RID", 0);
        matches.push_back({key["key"], std::to_string(static_cast<unsigned>(rid)),
                           firmware.is_string() ? firmware.get<std::string>() : "(null)"});
      }
    }
  }
  return matches;
}

// The report goes as far as the match that ends the run.
void ExpectReported(const nlohmann::json& explanation, const std::string& verboseOutput) {
  const auto& outcome = explanation["outcome"];
  auto explained = ExplainedMatches(explanation);
  EXPECT_EQ(outcome["matches"], explained.size());
  if (outcome["end"] == "noFirmware") {
    explained.resize(outcome["plannedMatches"].get<std::size_t>() + 1);
  }
  EXPECT_EQ(explained, testing::ReportedMatches(verboseOutput));
}

// The payload of the case, which comes last on its command line; empty when it has none.
std::string PayloadOf(const GoldenReplay& replay) {
  const auto& arguments = replay.toolArguments;
  if (arguments.size() < 2 || *(arguments.end() - 2) != "-p") return "";
  return arguments.back();
}

// The payload and the bypass of the case; the other options only affect the output.
std::vector<std::string> ExplainableArguments(const GoldenReplay& replay) {
  std::vector<std::string> arguments = {replay.recording, "-p", PayloadOf(replay)};
  if (std::ranges::count(replay.toolArguments, "--bypassVersion") > 0) {
    arguments.emplace_back("--bypassVersion");
  }
  return arguments;
}

TEST(Explain, AgreesWithTheRunOfEveryGoldenCase) {
  int count = 0;
  for (const auto& replay : testing::ReadGoldenReplays(GoldenDirectory / "cases")) {
    const auto payload = PayloadOf(replay);
    if (payload.empty() || !fs::is_directory(GoldenDirectory / payload)) continue;
    SCOPED_TRACE(replay.name);
    const auto arguments = ExplainableArguments(replay);
    const auto explained = RunVerb("explain", arguments, "--json");
    ASSERT_NE(explained.standardOutput, "") << explained.standardError;
    const auto json = nlohmann::json::parse(explained.standardOutput);
    const auto& status = json["outcome"]["status"];
    EXPECT_EQ(status.is_null() ? "SIGABRT" : status.dump(),
              RunVerb("replay", arguments, "").status);
    ExpectReported(json, RunVerb("replay", arguments, "-v").standardOutput);
    ++count;
  }
  EXPECT_GE(count, 35);
}

TEST(Explain, OfAMissingFileIsReportedInOneLine) {
  const std::string recording = "recordings/typical.registry.plist";
  ExpectOutcome(RunLab({"explain", "none", "-p", "payloads/older"}),
                {"66", "", "fernwick-lab: none: No such file or directory\n"});
  ExpectOutcome(RunLab({"explain", recording, "-p", "none"}),
                {"66", "", "fernwick-lab: none: No such file or directory\n"});
  ExpectOutcome(RunLab({"explain", "recordings", "-p", "payloads/older"}),
                {"66", "", "fernwick-lab: recordings: Is a directory\n"});
  ExpectOutcome(RunLab({"explain", recording, "-p", recording}),
                {"66", "", "fernwick-lab: " + recording + ": Not a directory\n"});
}

TEST(Explain, OfAMalformedRecordingIsReportedInOneLine) {
  const std::string path = "payloads/older/Fernwick/Zed-42/Config.plist";
  ExpectOutcome(RunLab({"explain", path, "-p", "payloads/older"}),
                {"65", "", "fernwick-lab: " + path + ": \"Recording Version\" is missing\n"});
}

TEST(Explain, WithoutAPayloadPrintsItsUsage) {
  ExpectOutcome(
      RunLab({"explain", "recordings/typical.registry.plist"}),
      {"64", "", "fernwick-lab: --payload is required; see fernwick-lab explain --help\n"});
}

TEST(Explain, ThatCannotBeWrittenIsAFailure) {
  ExpectOutcome(
      testing::RunChild({FERNWICK_LAB_PROGRAM, "explain", "recordings/typical.registry.plist", "-p",
                         "payloads/older"},
                        GoldenDirectory.string(), testing::OutputTarget::FullDisk),
      {"74", "", "fernwick-lab: standard output could not be written: No space left on device\n"});
}

TEST(Explain, ShowsNoControlCharacterOfAFileRaw) {
  const testing::TemporaryDirectory directory;
  directory.Write("Fernwick/Zed-42/Config.plist", "<dict><key>a&#9;b&#x9B;</key><true/></dict>");
  const auto outcome =
      RunLab({"explain", "recordings/typical.registry.plist", "-p", directory.Path()});
  EXPECT_EQ(outcome.standardOutput,
            "Computer        Zed-42 (0x42), revision 3\n"
            "Configuration   " +
                directory.Path() +
                "/Fernwick/Zed-42/Config.plist\n"
                "Outcome         nothing matches, no plan, status 13\n"
                "\n"
                "a\\011b\\233 at 1:7: names no type and is not read\n");
}

}  // namespace
}  // namespace fernwick
