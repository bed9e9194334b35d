// The computers of golden/hosts/: what is recorded of each, and that the tool ends on the computer
// itself, byte for byte, as over the recording.
//
// A case is one file: the files of a computer, as testing/host_tree.h describes them, then commands
// as in testing/programs/golden_case.h, in which COMPUTER is the recording. With
// FERNWICK_REWRITE_GOLDEN=1 in the environment the expectations are written instead of compared.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/host_tree.h"
#include "testing/programs/child_process.h"
#include "testing/programs/golden_case.h"
#include "testing/programs/host_namespace.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::ChildOutcome;
using testing::ExpectOutcome;
using Words = std::vector<std::string>;

const fs::path Hosts = fs::path(FERNWICK_GOLDEN_DIRECTORY) / "hosts";
const std::string Payload = "../examples/payload";

// A computer of the corpus, unfolded, and its recording.
class HostCase : public ::testing::TestWithParam<std::string> {
 protected:
  HostCase()
      : file_(Hosts / (GetParam() + ".txt")),
        text_(testing::ReadFile(file_)),
        tree_(text_.substr(0, CommandsAt())),
        recording_(directory_.Path() + "/computer.registry.plist") {
    const auto recorded = RunLab({"record", recording_, "--root", tree_.Root()});
    ExpectOutcome(recorded, {"0", "", ""});
  }

  std::size_t CommandsAt() const { return text_.find("\n$ ") + 1; }

  ChildOutcome RunLab(Words arguments) const {
    arguments.insert(arguments.begin(), FERNWICK_LAB_PROGRAM);
    return testing::RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY);
  }

  // On the computer itself.
  ChildOutcome RunThere(Words command) const {
    return testing::RunOnHost(tree_.Root(), command, FERNWICK_GOLDEN_DIRECTORY);
  }

  // The case with what its commands print now.
  std::string RunAndFormat() const {
    const auto commands = directory_.Write("commands.txt", text_.substr(CommandsAt()));
    std::string text = text_.substr(0, CommandsAt());
    for (auto& [head, arguments] : testing::ReadGoldenCase(commands).commands) {
      auto words = arguments;
      std::ranges::replace(words, std::string("COMPUTER"), recording_);
      text += head + testing::FormatSections(RunLab(words));
    }
    return text;
  }

  const fs::path file_;
  const std::string text_;
  const testing::HostTree tree_;
  const testing::TemporaryDirectory directory_;
  const std::string recording_;
};

TEST_P(HostCase, RunsAsExpected) {
  const auto found = RunAndFormat();
  if (std::getenv("FERNWICK_REWRITE_GOLDEN") != nullptr) {
    if (!HasFailure()) std::ofstream(file_, std::ios::binary) << found;
    return;
  }
  EXPECT_EQ(text_, found);
}

TEST_P(HostCase, SaysWhatItIs) {
  EXPECT_TRUE(text_.starts_with("# ")) << text_.substr(0, text_.find('\n'));
}

// What is recorded beyond what the tool reads makes no difference to it, nor does the form.
TEST_P(HostCase, RunsTheSameOverEveryRecordingOfIt) {
  const auto expected = RunLab({"replay", recording_, "-v", "-p", Payload});
  for (const Words& options :
       {Words{"--all"}, Words{"--to", "binary"}, Words{"--all", "--to=binary"}}) {
    const auto other = directory_.Path() + "/other.registry.plist";
    Words record = {"record", other, "--root", tree_.Root(), "--force"};
    record.insert(record.end(), options.begin(), options.end());
    ExpectOutcome(RunLab(record), {"0", "", ""});
    ExpectOutcome(RunLab({"replay", other, "-v", "-p", Payload}), expected);
  }
}

TEST_P(HostCase, RunsTheSameOnTheComputerItself) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  for (const Words& options : {Words{"-v", "-p", Payload}, Words{"-p", Payload},
                               Words{"-v", "--bypassVersion", "-p", Payload}, Words{}}) {
    Words tool = {FERNWICK_PROGRAM};
    tool.insert(tool.end(), options.begin(), options.end());
    Words overHost = {FERNWICK_LAB_PROGRAM, "replay", "--host"};
    overHost.insert(overHost.end(), options.begin(), options.end());
    Words overRecording = {"replay", recording_};
    overRecording.insert(overRecording.end(), options.begin(), options.end());
    const auto expected = RunLab(overRecording);
    ExpectOutcome(RunThere(tool), expected);
    ExpectOutcome(RunThere(overHost), expected);
  }
}

TEST_P(HostCase, IsExplainedShownAndRecordedTheSameOnTheComputerItself) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  const auto recorded = RunThere({FERNWICK_LAB_PROGRAM, "record", "-"});
  ExpectOutcome(recorded, {"0", testing::ReadFile(recording_), ""});
  for (const Words& words :
       {Words{"explain", "-p", Payload}, Words{"explain", "--json", "-p", Payload}, Words{"show"},
        Words{"show", "--json"}, Words{"show", "--plane", "IOService"},
        Words{"show", "--plane", "IOUSB"}}) {
    Words overRecording = words;
    overRecording.push_back(recording_);
    auto expected = RunLab(overRecording);
    const auto at = expected.standardError.find(recording_);
    if (at != std::string::npos) {
      expected.standardError.replace(at, recording_.size(), "this computer");
    }
    Words overHost = words;
    overHost.insert(overHost.begin(), FERNWICK_LAB_PROGRAM);
    overHost.emplace_back("--host");
    ExpectOutcome(RunThere(overHost), expected);
  }
}

Words Cases() {
  Words names;
  for (const auto& file : fs::directory_iterator(Hosts)) {
    names.push_back(file.path().stem().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
  auto name = info.param;
  std::ranges::replace(name, '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Hosts, HostCase, ::testing::ValuesIn(Cases()), TestName);

TEST(HostCases, AreManyComputers) {
  EXPECT_GE(Cases().size(), 15u);
}

}  // namespace
}  // namespace fernwick
