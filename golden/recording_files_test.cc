// The lab's verbs that write recordings, as processes.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::ReadFile;
using testing::TemporaryDirectory;

const fs::path Examples = fs::path(FERNWICK_SOURCE_DIRECTORY) / "examples";

// The outcome in one text, compared whole.
std::string RunLab(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), FERNWICK_LAB_PROGRAM);
  const auto outcome = testing::RunChild(arguments, Examples.string());
  return outcome.standardOutput + outcome.standardError + "[status " + outcome.status + "]\n";
}

std::vector<std::string> Recordings() {
  std::vector<std::string> names;
  for (const auto& file : fs::directory_iterator(Examples)) {
    const auto name = file.path().filename().string();
    if (name.ends_with(".registry.plist")) names.push_back(name);
  }
  return names;
}

constexpr char Done[] = "[status 0]\n";

TEST(Convert, ThereAndBackIsTheSameRecording) {
  const TemporaryDirectory directory;
  const auto xml = directory.Path() + "/xml";
  const auto binary = directory.Path() + "/binary";
  const auto again = directory.Path() + "/again";
  ASSERT_GE(Recordings().size(), 5u);
  for (const auto& name : Recordings()) {
    EXPECT_EQ(RunLab({"convert", name, xml, "--to", "xml"}), Done);
    EXPECT_EQ(RunLab({"convert", xml, binary, "--to", "binary"}), Done);
    EXPECT_EQ(RunLab({"convert", binary, again, "--to=xml"}), Done);
    EXPECT_EQ(ReadFile(again), ReadFile(xml));
    EXPECT_EQ(RunLab({"show", binary, "--json"}), RunLab({"show", name, "--json"}));
  }
}

TEST(Convert, NeedsAFormThatItKnows) {
  EXPECT_EQ(RunLab({"convert", "ports-only.registry.plist", "/tmp/none", "--to", "json"}),
            "fernwick-lab: --to: json not in {xml,binary}; see fernwick-lab convert --help\n"
            "[status 64]\n");
}

TEST(Convert, OfABadRecordingWritesNothing) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  const auto bad = directory.Write("bad", "<dict/>");
  EXPECT_EQ(RunLab({"convert", bad, out, "--to", "xml"}),
            "fernwick-lab: " + bad + ": \"Recording Version\" is missing\n[status 65]\n");
  const auto text = directory.Write("text", "{ \"Recording Version\" = 1; }");
  EXPECT_EQ(RunLab({"convert", text, out, "--to", "xml"}),
            "fernwick-lab: " + text +
                ": a recording is an XML or binary property list, not the old text form\n"
                "[status 65]\n");
  EXPECT_EQ(RunLab({"convert", directory.Path(), out, "--to", "xml"}),
            "fernwick-lab: " + directory.Path() + ": Is a directory\n[status 66]\n");
  EXPECT_FALSE(fs::exists(out));
}

TEST(Convert, ReportsAnOutputThatCannotBeWritten) {
  EXPECT_EQ(RunLab({"convert", "ports-only.registry.plist", "/nowhere/out", "--to", "xml"}),
            "fernwick-lab: /nowhere/out: No such file or directory\n[status 74]\n");
}

TEST(Redact, LeavesThePlansAsTheyWere) {
  const TemporaryDirectory directory;
  auto words = Recordings();
  words.insert(words.begin(), "redact");
  words.push_back(directory.Path());
  EXPECT_EQ(RunLab(words), "replaced \"UID\": 6\nreplaced \"UUID\": 8\n[status 0]\n");
  for (const auto& name : Recordings()) {
    EXPECT_EQ(RunLab({"replay", directory.Path() + "/" + name, "-p", "payload"}),
              RunLab({"replay", name, "-p", "payload"}));
  }
}

TEST(Redact, KeepsTheSerialisation) {
  const TemporaryDirectory directory;
  const auto binary = directory.Path() + "/binary";
  const auto out = directory.Path() + "/out";
  RunLab({"convert", "ports-only.registry.plist", binary, "--to", "binary"});
  EXPECT_EQ(RunLab({"redact", binary, out}), "replaced \"UUID\": 3\n[status 0]\n");
  EXPECT_TRUE(ReadFile(out).starts_with("bplist00"));
}

TEST(Redact, AcceptsFurtherKeys) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(
      RunLab({"redact", "ports-only.registry.plist", out, "--key", "Address", "--key=Revision"}),
      "replaced \"Address\": 4\nreplaced \"Revision\": 4\nreplaced \"UUID\": 3\n[status 0]\n");
}

TEST(Redact, ReportsThatNothingWasReplaced) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"redact", "no-supported-hardware.registry.plist", out}),
            "nothing to replace\n[status 0]\n");
}

TEST(Redact, WithOneBadRecordingWritesNone) {
  const TemporaryDirectory directory;
  const auto bad = directory.Write("bad", "<dict/>");
  fs::create_directory(directory.Path() + "/out");
  EXPECT_EQ(RunLab({"redact", "ports-only.registry.plist", bad, directory.Path() + "/out"}),
            "fernwick-lab: " + bad + ": \"Recording Version\" is missing\n[status 65]\n");
  EXPECT_TRUE(fs::is_empty(directory.Path() + "/out"));
}

TEST(Redact, ReportsAnOutputThatCannotBeInspected) {
  const TemporaryDirectory directory;
  const std::string one = "ports-only.registry.plist";
  const auto loop = directory.Path() + "/loop";
  fs::create_symlink("loop", loop);
  EXPECT_EQ(RunLab({"redact", one, loop + "/out"}),
            "fernwick-lab: " + loop + "/out: Too many levels of symbolic links\n[status 74]\n");
  const auto tooLong = directory.Path() + "/" + std::string(300, 'x');
  EXPECT_EQ(RunLab({"redact", one, tooLong}),
            "fernwick-lab: " + tooLong + ": File name too long\n[status 74]\n");
}

TEST(Redact, OfSeveralNeedsADirectoryAndDifferentNames) {
  const TemporaryDirectory directory;
  const std::string one = "ports-only.registry.plist";
  EXPECT_EQ(RunLab({"redact", one, one, "/nowhere/out"}),
            "fernwick-lab: /nowhere/out: several recordings need a directory to go to\n"
            "[status 64]\n");
  EXPECT_EQ(RunLab({"redact", one, "./" + one, directory.Path()}),
            "fernwick-lab: " + directory.Path() + "/" + one +
                ": two recordings of that name would go there\n[status 64]\n");
}

}  // namespace
}  // namespace fernwick
