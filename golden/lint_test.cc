// `fernwick-lab lint` as a process.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "lab/lint/rules/rule_texts.h"
#include "testing/coverage_counting.h"
#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::OutputTarget;
using testing::RunChild;

ChildOutcome Lint(std::vector<std::string> arguments,
                  const std::string& directory = FERNWICK_SOURCE_DIRECTORY,
                  OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "lint"});
  return RunChild(arguments, directory, target);
}

constexpr char ExamplesAsText[] =
    "examples/payload/Fernwick/Zed-1A09/Config.plist:4:18: warning: without \"Priority\" a match "
    "of this personality drives the plan's priority to 0 [no-priority]\n"
    "examples/payload/Fernwick/Zed-1A09/Config.plist:5:19: error: \"Version\" is \"210\"; only a "
    "number can match [wrong-kind]\n"
    "5 boards: 1 error, 1 warning, 0 notes\n";

TEST(Lint, OfTheExamplesFindsTheTextThatIsNotAVersion) {
  ExpectOutcome(Lint({"examples/payload"}), {"1", ExamplesAsText, ""});
}

TEST(Lint, OfNamedBoardsLooksAtEachOnce) {
  ExpectOutcome(Lint({"examples/payload", "Zed-1A07", "Zed-1A05", "Zed-1A07"}),
                {"0", "2 boards: 0 errors, 0 warnings, 0 notes\n", ""});
}

TEST(Lint, FailsFromTheFailLevelOn) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-42/Config.plist", "{ Comment = x; }");
  const std::string found =
      "p/Fernwick/Zed-42/Config.plist:1:3: warning: \"Comment\" is not a type, so its contents "
      "match nothing [unknown-type]\n"
      "1 board: 0 errors, 1 warning, 0 notes\n";
  ExpectOutcome(Lint({"p"}, directory.Path()), {"0", found, ""});
  ExpectOutcome(Lint({"p", "--fail-level", "error"}, directory.Path()), {"0", found, ""});
  ExpectOutcome(Lint({"p", "--fail-level", "warning"}, directory.Path()), {"1", found, ""});
  ExpectOutcome(Lint({"p", "--fail-level", "note"}, directory.Path()), {"1", found, ""});
}

TEST(Lint, PrintsJson) {
  ExpectOutcome(Lint({"--format", "json", "examples/payload", "Zed-1A09"}),
                {"1",
                 "{\n"
                 "  \"findings\": [\n"
                 "    {\n"
                 "      \"id\": \"no-priority\",\n"
                 "      \"severity\": \"warning\",\n"
                 "      \"path\": \"examples/payload/Fernwick/Zed-1A09/Config.plist\",\n"
                 "      \"line\": 4,\n"
                 "      \"column\": 18,\n"
                 "      \"message\": \"without \\\"Priority\\\" a match of this personality drives "
                 "the plan's priority to 0\",\n"
                 "      \"count\": 1,\n"
                 "      \"fingerprint\": \"3d566d9126e7aef5\"\n"
                 "    },\n"
                 "    {\n"
                 "      \"id\": \"wrong-kind\",\n"
                 "      \"severity\": \"error\",\n"
                 "      \"path\": \"examples/payload/Fernwick/Zed-1A09/Config.plist\",\n"
                 "      \"line\": 5,\n"
                 "      \"column\": 19,\n"
                 "      \"message\": \"\\\"Version\\\" is \\\"210\\\"; only a number can match\",\n"
                 "      \"count\": 1,\n"
                 "      \"fingerprint\": \"e97fdb692fd6f317\"\n"
                 "    }\n"
                 "  ],\n"
                 "  \"boards\": 1,\n"
                 "  \"errors\": 1,\n"
                 "  \"warnings\": 1,\n"
                 "  \"notes\": 0,\n"
                 "  \"known\": 0\n"
                 "}\n",
                 ""});
}

TEST(Lint, GoesOnAfterAMalformedConfiguration) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-A/Config.plist", "bplist00");
  directory.Write("p/Fernwick/Zed-B/Config.plist", "<dict>\n</plist>");
  directory.Write("p/Fernwick/Zed-C/Config.plist", "<array/>");
  ExpectOutcome(
      Lint({"p"}, directory.Path()),
      {"65",
       "p/Fernwick/Zed-A/Config.plist:byte 8: error: the file is cut short "
       "[malformed-property-list]\n"
       "p/Fernwick/Zed-B/Config.plist:2:1: error: </plist> found where </dict> was expected "
       "[malformed-property-list]\n"
       "p/Fernwick/Zed-C/Config.plist:1:1: error: the configuration is an array, not a dictionary "
       "[not-a-dictionary]\n"
       "3 boards: 3 errors, 0 warnings, 0 notes\n",
       ""});
}

TEST(Lint, ReportsWhatCannotBeReadFirst) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-A/Config.plist/x", "");
  directory.Write("p/Fernwick/Zed-B/Config.plist", "");
  ExpectOutcome(
      Lint({"p"}, directory.Path()),
      {"66",
       "p/Fernwick/Zed-A/Config.plist: error: it cannot be read: Is a directory [unreadable-file]\n"
       "p/Fernwick/Zed-B/Config.plist: error: the file is empty [malformed-property-list]\n"
       "2 boards: 2 errors, 0 warnings, 0 notes\n",
       ""});
}

// Different from a file that is missing.
TEST(Lint, ReportsAConfigurationThatCannotBeInspected) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-A/README", "");
  std::filesystem::create_symlink("Config.plist",
                                  directory.Path() + "/p/Fernwick/Zed-A/Config.plist");
  ExpectOutcome(
      Lint({"p"}, directory.Path()),
      {"66",
       "p/Fernwick/Zed-A/Config.plist: error: it cannot be read: Too many levels of symbolic "
       "links [unreadable-file]\n"
       "1 board: 1 error, 0 warnings, 0 notes\n",
       ""});
}

// A copy of the program that is within reach of everybody: where it was built may not be.
std::string ReachableProgram(const testing::TemporaryDirectory& directory) {
  std::filesystem::permissions(directory.Path(), std::filesystem::perms(0755));
  const auto program = directory.Path() + "/fernwick-lab";
  std::filesystem::copy_file(FERNWICK_LAB_PROGRAM, program);
  return program;
}

TEST(Lint, ReportsADirectoryThatCannotBeListed) {
  // Where leaks are looked for, or counters are to be written at the end, a process must keep the
  // rights that it began with.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-A/Config.plist", "{}");
  const auto program = ReachableProgram(directory);
  std::filesystem::permissions(directory.Path() + "/p/Fernwick/Zed-A",
                               std::filesystem::perms(0311));
  const testing::Unprivileged unprivileged;
  ExpectOutcome(RunChild({program, "lint", "p"}, directory.Path()),
                {"66",
                 "p/Fernwick/Zed-A: error: it cannot be read: Permission denied [unreadable-file]\n"
                 "1 board: 1 error, 0 warnings, 0 notes\n",
                 ""});
}

TEST(Lint, ReportsAPayloadThatMayNotBeEntered) {
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-A/Config.plist", "{}");
  const auto program = ReachableProgram(directory);
  std::filesystem::permissions(directory.Path() + "/p", std::filesystem::perms(0644));
  const testing::Unprivileged unprivileged;
  ExpectOutcome(RunChild({program, "lint", "p"}, directory.Path()),
                {"66", "", "fernwick-lab: p/Fernwick: Permission denied\n"});
}

TEST(Lint, PassesOverVersionControlAndReportsAUtilityThatIsADirectoryOnce) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/.git/HEAD", "");
  directory.Write("p/Fernwick/.svn/entries", "");
  directory.Write("p/Fernwick/PortFlash.efi/PortFlash.efi", "x");
  directory.Write("p/Fernwick/Zed-42/a.bin", "x");
  directory.Write("p/Fernwick/Zed-42/Config.plist",
                  "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>200</integer>"
                  "<key>Firmware</key><string>a.bin</string><key>Priority</key>"
                  "<integer>1</integer></dict></dict>");
  ExpectOutcome(Lint({"p"}, directory.Path()),
                {"1",
                 "p/Fernwick/Zed-42/Config.plist:1:7: error: PortFlash.efi, which flashes the "
                 "images of \"LegacyUSBC\", is not a file in Fernwick/ [missing-utility]\n"
                 "1 board: 1 error, 0 warnings, 0 notes\n",
                 ""});
}

TEST(Lint, ReportsLinksOutOfTheBoardDirectoryAndDanglingOnes) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/PortFlash.efi", "");
  directory.Write("p/Fernwick/Zed-41/a.bin", "x");
  directory.Write("p/Fernwick/Zed-42/Config.plist",
                  "<dict><key>USBC</key><array><dict>\n<key>Firmware</key><string>a.bin</string>"
                  "</dict><dict>\n<key>Firmware</key><string>b.bin</string></dict></array></dict>");
  const auto board = directory.Path() + "/p/Fernwick/Zed-42/";
  std::filesystem::create_symlink("../Zed-41/a.bin", board + "a.bin");
  std::filesystem::create_symlink("c.bin", board + "b.bin");
  const auto found = Lint({"p", "Zed-42"}, directory.Path()).standardOutput;
  for (const std::string line :
       {"Config.plist:1:7: error: \"PortFlash.efi\" is an empty file [empty-image]",
        "Config.plist:2:20: error: \"a.bin\" is a link to a file outside the board directory "
        "[image-linked-outside]",
        "Config.plist:3:20: error: \"b.bin\" is not in the board directory [missing-image]"}) {
    EXPECT_NE(found.find(line), std::string::npos) << line << "\n" << found;
  }
}

TEST(Lint, OfNoPayloadPrintsNothing) {
  ExpectOutcome(Lint({"no-such"}),
                {"66", "", "fernwick-lab: no-such: No such file or directory\n"});
  ExpectOutcome(Lint({"README.md"}), {"66", "", "fernwick-lab: README.md: Not a directory\n"});
  ExpectOutcome(Lint({""}), {"66", "", "fernwick-lab: : No such file or directory\n"});
}

TEST(Lint, OfAMissingBoardReadsNoConfiguration) {
  ExpectOutcome(
      Lint({"examples/payload", "Zed-1A09", "Zed-42"}),
      {"66", "", "fernwick-lab: examples/payload/Fernwick/Zed-42: No such file or directory\n"});
  ExpectOutcome(
      Lint({"examples/payload", "PortFlash.efi"}),
      {"66", "", "fernwick-lab: examples/payload/Fernwick/PortFlash.efi: Not a directory\n"});
}

TEST(Lint, LintsOrExplainsOrLists) {
  const std::string refusal =
      "fernwick-lab: exactly one of PAYLOAD, --explain and --list is needed; see fernwick-lab lint "
      "--help\n";
  ExpectOutcome(Lint({}), {"64", "", refusal});
  ExpectOutcome(Lint({"--list", "examples/payload"}), {"64", "", refusal});
  ExpectOutcome(Lint({"--list", "--explain", "wrong-kind"}), {"64", "", refusal});
  ExpectOutcome(Lint({"--explain", "wrong-kind", "examples/payload"}), {"64", "", refusal});
}

TEST(Lint, RefusesAFormatThatItDoesNotKnow) {
  ExpectOutcome(
      Lint({"examples/payload", "--format", "xml"}),
      {"64", "",
       "fernwick-lab: --format: \"xml\" is not one of text, json, sarif; see fernwick-lab lint "
       "--help\n"});
}

TEST(Lint, IgnoresFindingsAndChangesTheirSeverity) {
  ExpectOutcome(Lint({"examples/payload", "--ignore", "wrong-kind"}),
                {"0",
                 "examples/payload/Fernwick/Zed-1A09/Config.plist:4:18: warning: without "
                 "\"Priority\" a match of this personality drives the plan's priority to 0 "
                 "[no-priority]\n"
                 "5 boards: 0 errors, 1 warning, 0 notes\n",
                 ""});
  ExpectOutcome(
      Lint({"--severity", "no-priority=error", "--ignore", "wrong-kind", "examples/payload"}),
      {"1",
       "examples/payload/Fernwick/Zed-1A09/Config.plist:4:18: error: without \"Priority\" a match "
       "of this personality drives the plan's priority to 0 [no-priority]\n"
       "5 boards: 1 error, 0 warnings, 0 notes\n",
       ""});
  const std::string unknown =
      "fernwick-lab: there is no finding \"no-such\"; see fernwick-lab lint --list\n";
  ExpectOutcome(Lint({"examples/payload", "--ignore", "no-such"}), {"64", "", unknown});
  ExpectOutcome(Lint({"examples/payload", "--severity", "no-such=note"}), {"64", "", unknown});
  for (const std::string bad : {"wrong-kind", "wrong-kind=", "wrong-kind=fatal"}) {
    ExpectOutcome(
        Lint({"examples/payload", "--severity", bad}),
        {"64", "",
         "fernwick-lab: --severity: " + bad + " is not ID=error, ID=warning or ID=note\n"});
  }
}

constexpr char OneComment[] = "{ Comment = x; }";

// What lint prints of OneComment in the board directory Zed-42 at that location.
std::string CommentAt(const std::string& location, const std::string& severity = "warning") {
  return "p/Fernwick/Zed-42/Config.plist:" + location + ": " + severity +
         ": \"Comment\" is not a type, so its contents match nothing [unknown-type]\n";
}

TEST(Lint, ReadsTheSettingsInThePayload) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-42/Config.plist", OneComment);
  directory.Write("p/.fernwick-lint.json", "{\"severity\": {\"unknown-type\": \"error\"}}");
  ExpectOutcome(Lint({"p"}, directory.Path()),
                {"1", CommentAt("1:3", "error") + "1 board: 1 error, 0 warnings, 0 notes\n", ""});
  ExpectOutcome(Lint({"p", "--severity", "unknown-type=note"}, directory.Path()),
                {"0", CommentAt("1:3", "note") + "1 board: 0 errors, 0 warnings, 1 note\n", ""});
  directory.Write("p/.fernwick-lint.json", "{\"ignore\": [\"unknown-type\"]}");
  ExpectOutcome(Lint({"p"}, directory.Path()),
                {"0", "1 board: 0 errors, 0 warnings, 0 notes\n", ""});
}

TEST(Lint, RefusesSettingsThatItCannotUse) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-42/Config.plist", OneComment);
  directory.Write("p/.fernwick-lint.json", "{\"ignored\": []}");
  ExpectOutcome(Lint({"p"}, directory.Path()),
                {"65", "",
                 "fernwick-lab: p/.fernwick-lint.json: there is no setting \"ignored\"; there are "
                 "\"ignore\" and \"severity\"\n"});
  std::filesystem::remove(directory.Path() + "/p/.fernwick-lint.json");
  std::filesystem::create_symlink("nowhere", directory.Path() + "/p/.fernwick-lint.json");
  ExpectOutcome(Lint({"p"}, directory.Path()),
                {"66", "", "fernwick-lab: p/.fernwick-lint.json: No such file or directory\n"});
}

TEST(Lint, ReportsOnlyWhatIsNotInTheBaseline) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-42/Config.plist", OneComment);
  const std::vector<std::string> lint = {"p", "--fail-level", "note", "--baseline", "known.json"};
  auto update = lint;
  update.push_back("--update-baseline");
  ExpectOutcome(Lint(lint, directory.Path()),
                {"66", "", "fernwick-lab: known.json: No such file or directory\n"});
  ExpectOutcome(Lint(update, directory.Path()),
                {"0", CommentAt("1:3") + "1 board: 0 errors, 1 warning, 0 notes\n",
                 "known.json: 1 finding saved\n"});
  const std::string known =
      "1 board: 0 errors, 0 warnings, 0 notes; 1 finding is in the baseline\n";
  ExpectOutcome(Lint(lint, directory.Path()), {"0", known, ""});
  directory.Write("p/Fernwick/Zed-42/Config.plist",
                  std::string("/* a line more */\n") + OneComment);
  ExpectOutcome(Lint(lint, directory.Path()), {"0", known, ""});
  directory.Write("p/Fernwick/Zed-42/Config.plist", "{ Comment = x; Author = y; }");
  ExpectOutcome(Lint(lint, directory.Path()),
                {"1",
                 "p/Fernwick/Zed-42/Config.plist:1:16: warning: \"Author\" is not a type, so its "
                 "contents match nothing [unknown-type]\n"
                 "1 board: 0 errors, 1 warning, 0 notes; 1 finding is in the baseline\n",
                 ""});
  ExpectOutcome(Lint(update, directory.Path()),
                {"0",
                 "p/Fernwick/Zed-42/Config.plist:1:16: warning: \"Author\" is not a type, so its "
                 "contents match nothing [unknown-type]\n"
                 "1 board: 0 errors, 1 warning, 0 notes; 1 finding is in the baseline\n",
                 "known.json: 2 findings saved\n"});
}

TEST(Lint, SavesTheBaselineOfAWholePayload) {
  ExpectOutcome(Lint({"examples/payload", "--update-baseline"}),
                {"64", "", "fernwick-lab: --update-baseline needs --baseline FILE\n"});
  ExpectOutcome(
      Lint({"examples/payload", "Zed-1A05", "--baseline", "x", "--update-baseline"}),
      {"64", "", "fernwick-lab: --update-baseline needs all boards, so it excludes BOARD\n"});
}

TEST(Lint, LosesNoBaselineSilently) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-42/Config.plist", OneComment);
  directory.Write("known.json/file", "");
  ExpectOutcome(Lint({"p", "--baseline", "known.json"}, directory.Path()),
                {"66", "", "fernwick-lab: known.json: Is a directory\n"});
  directory.Write("other.json", "[]");
  ExpectOutcome(Lint({"p", "--baseline", "other.json", "--update-baseline"}, directory.Path()),
                {"65", "", "fernwick-lab: other.json: it is not a baseline of lint\n"});
  ExpectOutcome(Lint({"p", "--baseline", "none/known.json", "--update-baseline"}, directory.Path()),
                {"74", CommentAt("1:3") + "1 board: 0 errors, 1 warning, 0 notes\n",
                 "fernwick-lab: none/known.json: No such file or directory\n"});
}

TEST(Lint, ExplainsARule) {
  ExpectOutcome(Lint({"--explain", "single-port-uuid"}),
                {"0",
                 "single-port-uuid (error): \"Port UUID\" is a single string\n"
                 "\n"
                 "Other keys accept a single value or a list of them. \"Port UUID\" accepts only "
                 "a\n"
                 "list: a single string matches no port, not even the one that has it.\n"
                 "\n"
                 "Put the string into an array.\n"
                 "\n"
                 "Instead of\n"
                 "\n"
                 "    <key>Port UUID</key>\n"
                 "    <string>5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00</string>\n"
                 "\n"
                 "write\n"
                 "\n"
                 "    <key>Port UUID</key>\n"
                 "    <array><string>5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00</string></array>\n",
                 ""});
}

// The rules in the document are those that --explain prints. With FERNWICK_REWRITE_GOLDEN=1 they
// are written there.
TEST(Lint, HasADocumentMadeOfItsRules) {
  const std::string path = FERNWICK_SOURCE_DIRECTORY "/docs/lint.md";
  const std::string mark = " from the rules in lab/lint. -->\n\n";
  const auto document = testing::ReadFile(path);
  const auto end = document.find(mark);
  ASSERT_NE(end, std::string::npos);
  const auto made = document.substr(0, end + mark.size()) + lab::LintRulesAsMarkdown();
  if (std::getenv("FERNWICK_REWRITE_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << made;
    return;
  }
  EXPECT_EQ(document, made);
}

TEST(Lint, ExplainsNoOtherRule) {
  ExpectOutcome(Lint({"--explain", "no-such-rule"}),
                {"64", "",
                 "fernwick-lab: there is no finding \"no-such-rule\"; see fernwick-lab lint "
                 "--list\n"});
}

TEST(Lint, ThatCannotBeWrittenIsAFailure) {
  ExpectOutcome(
      Lint({"examples/payload"}, FERNWICK_SOURCE_DIRECTORY, OutputTarget::FullDisk),
      {"74", "", "fernwick-lab: standard output could not be written: No space left on device\n"});
}

TEST(Lint, ShowsNoControlCharacterRaw) {
  const testing::TemporaryDirectory directory;
  directory.Write("p/Fernwick/Zed-A\x1B/Config.plist",
                  "<dict><key>a&#9;b&#x9B;</key><true/></dict>");
  ExpectOutcome(
      Lint({"p"}, directory.Path()),
      {"0",
       "p/Fernwick/Zed-A\\033: warning: no computer may ask for it: a board identifier is \"Zed-\" "
       "and upper-case hexadecimal digits; \"Zed-A\" may be meant [doubtful-board-id]\n"
       "p/Fernwick/Zed-A\\033/Config.plist:1:7: warning: \"a b\\233\" is not a type, so its "
       "contents match nothing [unknown-type]\n"
       "1 board: 0 errors, 2 warnings, 0 notes\n",
       ""});
}

}  // namespace
}  // namespace fernwick
