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

const fs::path SourceDirectory = FERNWICK_SOURCE_DIRECTORY;
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

// The text between the first line that is `start` and the next line that is `end`.
std::string BlockOf(const fs::path& document, const std::string& start, const std::string& end) {
  const auto text = testing::ReadFile(document);
  const auto at = text.find("\n" + start + "\n");
  if (at == std::string::npos) return "";
  const auto begin = at + start.size() + 2;
  return text.substr(begin, text.find("\n" + end + "\n", begin) + 1 - begin);
}

// cp would wait for the writer of a FIFO, which a real computer does not have there.
TEST_P(HostCase, IsRecordedTheSameFromTheCopyThatTheDocumentMakes) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  if (GetParam() == "hostile") GTEST_SKIP() << "has FIFOs, which cp waits for";
  const auto script = BlockOf(SourceDirectory / "docs/recording.md", "```bash", "```");
  ASSERT_NE(script, "");
  ExpectOutcome(testing::RunOnHost(tree_.Root(), {"bash", "-c", script}, directory_.Path()),
                {"0", "", ""});
  ExpectOutcome(testing::RunChild({"sh", "-c", "rm -r computer && tar -xzf computer.tar.gz"},
                                  directory_.Path()),
                {"0", "", ""});
  ExpectOutcome(RunLab({"record", "-", "--root", directory_.Path() + "/computer"}),
                {"0", testing::ReadFile(recording_), ""});
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
  EXPECT_GE(Cases().size(), 17u);
}

// The first command of the README, on a computer with a controller and on one without.
TEST(HostCases, EndAsTheReadmeShows) {
  const auto reason = testing::NoHostNamespaceReason();
  if (!reason.empty()) GTEST_SKIP() << reason;
  const auto readme = testing::ReadFile(SourceDirectory / "README.md");
  for (const char* name : {"unknown-board", "unknown-board-without-thunderbolt"}) {
    const auto text = testing::ReadFile(Hosts / (std::string(name) + ".txt"));
    const testing::HostTree tree(text.substr(0, text.find("\n$ ") + 1));
    const std::string command = "fernwick -v -p examples/payload";
    const auto outcome = testing::RunOnHost(
        tree.Root(),
        {"sh", "-c", "PATH=\"" FERNWICK_BUILD_DIRECTORY ":$PATH\"; exec " + command + " 2>&1"},
        SourceDirectory.string());
    EXPECT_EQ(outcome.status, "13");
    EXPECT_NE(
        readme.find("```text\n$ " + command + "\n" + outcome.standardOutput + "[status 13]\n```\n"),
        std::string::npos)
        << outcome.standardOutput;
  }
}

}  // namespace
}  // namespace fernwick
