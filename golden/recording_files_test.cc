// The lab's verbs that write recordings, as processes.

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/host_tree.h"
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
    EXPECT_EQ(RunLab({"convert", name, xml, "--to", "xml", "--force"}), Done);
    EXPECT_EQ(RunLab({"convert", xml, binary, "--to", "binary", "--force"}), Done);
    EXPECT_EQ(RunLab({"convert", binary, again, "--to=xml", "--force"}), Done);
    EXPECT_EQ(ReadFile(again), ReadFile(xml));
    EXPECT_EQ(RunLab({"show", binary, "--json"}), RunLab({"show", name, "--json"}));
  }
}

TEST(Convert, NeedsAFormThatItKnows) {
  EXPECT_EQ(
      RunLab({"convert", "ports-only.registry.plist", "/tmp/none", "--to", "json"}),
      "fernwick-lab: --to: \"json\" is not one of xml, binary; see fernwick-lab convert --help\n"
      "[status 64]\n");
}

TEST(Convert, AcceptsAnyPropertyList) {
  const TemporaryDirectory directory;
  const auto text = directory.Write("text", "{ \"Firmware\" = (a, \"b c\"); }");
  const auto binary = directory.Path() + "/binary";
  EXPECT_EQ(RunLab({"convert", text, binary, "--to", "binary"}), Done);
  EXPECT_TRUE(ReadFile(binary).starts_with("bplist00"));
  EXPECT_EQ(RunLab({"convert", binary, "-", "--to", "xml"}),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
            "\t<key>Firmware</key>\n\t<array>\n\t\t<string>a</string>\n"
            "\t\t<string>b c</string>\n\t</array>\n</dict>\n</plist>\n[status 0]\n");
}

TEST(Convert, ReadsStandardInputAndWritesStandardOutput) {
  const auto lab = std::string(FERNWICK_LAB_PROGRAM);
  const std::string name = "ports-only.registry.plist";
  const auto command = lab + " convert - - --to binary < " + name + " | " + lab +
                       " convert - - --to xml | " + lab + " show - --json";
  const auto outcome = testing::RunChild({"/bin/sh", "-c", command}, Examples.string());
  EXPECT_EQ(outcome.standardOutput + outcome.standardError + Done,
            RunLab({"show", name, "--json"}));
}

TEST(Explain, ReadsStandardInput) {
  const std::string name = "up-to-date.registry.plist";
  const auto outcome = testing::RunChild(
      {"/bin/sh", "-c", std::string(FERNWICK_LAB_PROGRAM) + " explain - -p payload < " + name},
      Examples.string());
  EXPECT_EQ(outcome.standardOutput + outcome.standardError + Done,
            RunLab({"explain", name, "-p", "payload"}));
}

TEST(Convert, ReplacesAFileOnlyWhenForced) {
  const TemporaryDirectory directory;
  const auto out = directory.Write("out", "old");
  const std::string name = "ports-only.registry.plist";
  EXPECT_EQ(RunLab({"convert", name, out, "--to", "xml"}),
            "fernwick-lab: " + out +
                ": there is a file of that name; --force replaces it\n[status 74]\n");
  EXPECT_EQ(ReadFile(out), "old");
  EXPECT_EQ(RunLab({"convert", name, out, "--to", "xml", "--force"}), Done);
  EXPECT_TRUE(ReadFile(out).starts_with("<?xml"));
}

TEST(Convert, OfAMalformedFileWritesNothing) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  const auto bad = directory.Write("bad", "<dict>");
  EXPECT_TRUE(RunLab({"convert", bad, out, "--to", "xml"}).ends_with("[status 65]\n"));
  EXPECT_EQ(RunLab({"convert", directory.Path(), out, "--to", "xml"}),
            "fernwick-lab: " + directory.Path() + ": Is a directory\n[status 66]\n");
  EXPECT_FALSE(fs::exists(out));
}

TEST(Convert, ReportsAnOutputThatCannotBeWritten) {
  EXPECT_EQ(RunLab({"convert", "ports-only.registry.plist", "/nowhere/out", "--to", "xml"}),
            "fernwick-lab: /nowhere/out: No such file or directory\n[status 74]\n");
}

using Json = nlohmann::json;

// The names of all members but those of properties, planes and hardware records, which are data.
void CollectMembers(const Json& json, std::set<std::string>& members) {
  for (const auto& [name, value] : json.items()) {
    if (json.is_object()) members.insert(name);
    const bool isData =
        name == "properties" || name == "thunderboltControllers" || name == "portControllers";
    if (name == "planes") {
      for (const auto& root : value) CollectMembers(root, members);
    } else if (value.is_structured() && (!isData || value.contains("endsRunAbnormally"))) {
      CollectMembers(value, members);
    }
  }
}

TEST(Show, HasItsJsonDocumented) {
  std::set<std::string> members;
  for (const char* recording :
       {"ports-below-thunderbolt.registry.plist", "../golden/recordings/no-uid.registry.plist"}) {
    const auto outcome =
        testing::RunChild({FERNWICK_LAB_PROGRAM, "show", recording, "--json"}, Examples.string());
    ASSERT_EQ(outcome.status, "0") << outcome.standardError;
    CollectMembers(Json::parse(outcome.standardOutput), members);
  }
  EXPECT_EQ(members.size(), 14u);
  const auto document = ReadFile(fs::path(FERNWICK_SOURCE_DIRECTORY) / "docs" / "json.md");
  const auto section = document.substr(document.find("## show\n"));
  for (const auto& member : members) {
    EXPECT_NE(section.find("`" + member + "`"), std::string::npos) << member;
  }
}

TEST(Redact, LeavesThePlansAsTheyWere) {
  const TemporaryDirectory directory;
  auto words = Recordings();
  words.insert(words.begin(), "redact");
  words.push_back(directory.Path());
  const auto report = RunLab(words);
  EXPECT_TRUE(
      report.starts_with("replaced \"UID\": 6\nreplaced \"UUID\": 8\nkept \"Address\": 9\n"))
      << report;
  EXPECT_TRUE(report.ends_with("[status 0]\n")) << report;
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
  EXPECT_TRUE(RunLab({"redact", binary, out}).starts_with("replaced \"UUID\": 3\nkept "));
  EXPECT_TRUE(ReadFile(out).starts_with("bplist00"));
}

// A recording of a device tree's root with these properties.
std::string RecordingWith(const std::string& properties) {
  return "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
         "<key>IODeviceTree</key><dict><key>Properties</key><dict>" +
         properties + "</dict></dict></dict></dict>";
}

constexpr char Private[] =
    "<key>owner</key><string>Ann</string><key>room</key><string>9</string>"
    "<key>board-rev</key><data>AA==</data>";

TEST(Redact, DropsAndKeepsPropertiesAndListsThem) {
  const TemporaryDirectory directory;
  const auto path = directory.Write("in", RecordingWith(Private));
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"redact", path, out}),
            "nothing to replace\nkept \"board-rev\": 1\ndropped \"owner\": 1\n"
            "dropped \"room\": 1\n[status 0]\n");
  EXPECT_EQ(RunLab({"redact", path, out, "--force", "--keep", "room", "--key=owner"}),
            "replaced \"owner\": 1\nkept \"board-rev\": 1\nkept \"room\": 1\n[status 0]\n");
  EXPECT_EQ(RunLab({"redact", path, out, "--force", "--keep-all"}),
            "nothing to replace\nkept \"board-rev\": 1\nkept \"owner\": 1\n"
            "kept \"room\": 1\n[status 0]\n");
}

TEST(Redact, WarnsOfAKeyWithoutEffect) {
  const TemporaryDirectory directory;
  const auto path = directory.Write("in", RecordingWith(Private));
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"redact", path, out, "--key", "onwer", "--keep", "nothing"}),
            "nothing to replace\nkept \"board-rev\": 1\ndropped \"owner\": 1\n"
            "dropped \"room\": 1\n"
            "fernwick-lab: warning: --key \"onwer\" replaced nothing (did you mean \"owner\"?)\n"
            "fernwick-lab: warning: --keep \"nothing\" kept nothing\n[status 0]\n");
}

TEST(Redact, RefusesAKeyThatTheToolReadsUnlessForced) {
  const TemporaryDirectory directory;
  const auto path = directory.Write("in", RecordingWith(Private));
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"redact", path, out, "--key", "board-rev"}),
            "fernwick-lab: --key \"board-rev\": the tool reads this property, so it would decide "
            "differently; --force replaces it all the same\n[status 64]\n");
  EXPECT_FALSE(fs::exists(out));
  EXPECT_TRUE(RunLab({"redact", path, out, "--key", "board-rev", "--force"})
                  .starts_with("replaced \"board-rev\": 1\n"));
  EXPECT_EQ(RunLab({"redact", path, out, "--key", "UUID", "--force"}).find("the tool reads"),
            std::string::npos);
}

TEST(Redact, ReplacesAFileOnlyWhenForced) {
  const TemporaryDirectory directory;
  const auto out = directory.Write("ports-only.registry.plist", "old");
  const std::string one = "ports-only.registry.plist";
  EXPECT_EQ(RunLab({"redact", "up-to-date.registry.plist", one, directory.Path()}),
            "fernwick-lab: " + out +
                ": there is a file of that name; --force replaces it\n[status 74]\n");
  EXPECT_FALSE(fs::exists(directory.Path() + "/up-to-date.registry.plist"));
  EXPECT_EQ(ReadFile(out), "old");
}

TEST(Redact, ReadsStandardInputAndWritesStandardOutput) {
  const TemporaryDirectory directory;
  directory.Write("in", RecordingWith(Private));
  const auto lab = std::string(FERNWICK_LAB_PROGRAM);
  const auto outcome = testing::RunChild(
      {"/bin/sh", "-c", lab + " redact - - < in | " + lab + " show - | head -n 5"},
      directory.Path());
  EXPECT_EQ(outcome.standardOutput,
            "Board (null) (0x0), revision 0\n\nIODeviceTree:\n/\n      \"board-rev\" = <00>\n");
  EXPECT_TRUE(outcome.standardError.starts_with("nothing to replace\nkept \"board-rev\": 1\n"));
  EXPECT_EQ(RunLab({"redact", "-", directory.Path()}),
            "fernwick-lab: standard input has no name for a file in " + directory.Path() +
                "\n[status 64]\n");
}

TEST(Redact, ReportsThatNothingWasReplaced) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"redact", "no-supported-hardware.registry.plist", out}),
            "nothing to replace\nkept \"Vendor ID\": 1\nkept \"board-id\": 1\n"
            "kept \"board-rev\": 1\n[status 0]\n");
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

// The files of a computer that reports a board and nothing else.
constexpr char Board[] = "sys/class/dmi/id/board_name = Zed-42\n";

constexpr char ShownBoard[] =
    "Board Zed-42 (0x42), revision 0\n\nIODeviceTree:\nRoot\n"
    "      \"board-id\" = <5a65642d 343200>\n  options\n";

TEST(Record, WritesXmlOrBinary) {
  const testing::HostTree tree(Board);
  const TemporaryDirectory directory;
  for (const char* form : {"xml", "binary"}) {
    const auto out = directory.Path() + "/" + form;
    EXPECT_EQ(RunLab({"record", out, "--root", tree.Root(), "--to", form}), Done);
    EXPECT_EQ(ReadFile(out).starts_with("bplist00"), form == std::string("binary"));
    EXPECT_TRUE(RunLab({"show", out}).starts_with(ShownBoard));
  }
}

TEST(Record, WritesStandardOutput) {
  const testing::HostTree tree(Board);
  const auto lab = std::string(FERNWICK_LAB_PROGRAM);
  const auto outcome = testing::RunChild(
      {"/bin/sh", "-c", lab + " record - --root . | " + lab + " show - | head -n 6"}, tree.Root());
  EXPECT_EQ(outcome.standardOutput + outcome.standardError, ShownBoard);
}

TEST(Record, ReplacesAFileOnlyWhenForced) {
  const testing::HostTree tree(Board);
  const TemporaryDirectory directory;
  const auto out = directory.Write("out", "old");
  EXPECT_EQ(RunLab({"record", out, "--root", tree.Root()}),
            "fernwick-lab: " + out +
                ": there is a file of that name; --force replaces it\n[status 74]\n");
  EXPECT_EQ(ReadFile(out), "old");
  EXPECT_EQ(RunLab({"record", out, "--root", tree.Root(), "--force"}), Done);
  EXPECT_TRUE(ReadFile(out).starts_with("<?xml"));
}

TEST(Record, NeedsACopyOfAComputer) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"record", out, "--root", directory.Path()}),
            "fernwick-lab: " + directory.Path() +
                ": there is neither \"proc\" nor \"sys\" in it\n[status 66]\n");
  EXPECT_EQ(RunLab({"record", out, "--root", "/nowhere"}),
            "fernwick-lab: /nowhere: No such file or directory\n[status 66]\n");
  EXPECT_FALSE(fs::exists(out));
}

TEST(Record, ReportsAnOutputThatCannotBeWritten) {
  const testing::HostTree tree(Board);
  EXPECT_EQ(RunLab({"record", "/nowhere/out", "--root", tree.Root()}),
            "fernwick-lab: /nowhere/out: No such file or directory\n[status 74]\n");
}

TEST(Record, OfThisComputerCanAlwaysBeReplayed) {
  const TemporaryDirectory directory;
  const auto out = directory.Path() + "/out";
  EXPECT_EQ(RunLab({"record", out, "--all"}), Done);
  EXPECT_NE(RunLab({"show", out}).find("[status 0]"), std::string::npos);
}

TEST(Host, IsInPlaceOfARecording) {
  EXPECT_EQ(RunLab({"show", "--host", "ports-only.registry.plist"}),
            "fernwick-lab: --host is used in place of RECORDING; see fernwick-lab show --help\n"
            "[status 64]\n");
  EXPECT_EQ(RunLab({"explain", "-p", "payload"}),
            "fernwick-lab: RECORDING or --host is required; see fernwick-lab explain --help\n"
            "[status 64]\n");
  EXPECT_EQ(RunLab({"replay", "--hots"}),
            "fernwick-lab: there is no option \"--hots\" before RECORDING (did you mean "
            "\"--host\"?); see fernwick-lab replay --help\n[status 64]\n");
}

}  // namespace
}  // namespace fernwick
