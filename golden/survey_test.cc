// The verb `survey` as a process.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/programs/piped_process.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::OutputTarget;
using testing::PipedProcess;

// Runs in golden/.
ChildOutcome Survey(std::vector<std::string> arguments,
                    OutputTarget target = OutputTarget::Captured,
                    const std::string& directory = FERNWICK_GOLDEN_DIRECTORY) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "survey"});
  return testing::RunChild(arguments, directory, target);
}

// One computer of each outcome, and a payload that has something for the first.
const std::vector<std::string> EachOutcome = {
    "-p",
    "../examples/payload",
    "../examples/thunderbolt-only.registry.plist",
    "recordings/typical.registry.plist",
    "recordings/bypass-nvram.registry.plist",
    "none.registry.plist",
    "recordings/bare-switch.registry.plist",
};

ChildOutcome SurveyEachOutcome(const std::vector<std::string>& options,
                               OutputTarget target = OutputTarget::Captured) {
  auto arguments = EachOutcome;
  arguments.insert(arguments.end(), options.begin(), options.end());
  return Survey(arguments, target);
}

constexpr char Totals[] =
    "5 computers: 1 with a plan, 1 without, 1 bypassed, 1 refused, 1 ended abnormally; 2 matches\n"
    "  classes: 1 planned, 1 unknown board, 1 bypassed, 1 fault, 1 refused\n"
    "  board Zed-1A06: 1 planned\n"
    "  board Zed-42: 1 unknown board, 1 bypassed, 1 fault\n"
    "  1 x fernwick: Error reading plist: No files to support boardID: Zed-42\n"
    "  1 x fernwick: Unexpected format for config plist file.  Aborting\n";

const std::string Rows[] = {
    R"({"file":"../examples/thunderbolt-only.registry.plist","outcome":"plan","class":"planned","status":0,"reason":null,"board":"Zed-1A06","revision":1,"matches":[{"type":"LegacyThunderbolt","rid":2,"portAddress":null,"installed":23.020000001,"version":24,"image":"ridge-24.00.bin","imageMissing":false},{"type":"LegacyThunderbolt","rid":3,"portAddress":null,"installed":23.060000001,"version":24,"image":"ridge-24.00.bin","imageMissing":false}],"nearestMiss":null,"diagnostics":[],"plan":{"priority":30,"setNVRAM":{},"clearNVRAM":[],"options":"-g -o -sr 2 0 -ee efi-quince-payload0-data -g -o -sr 3 0 -ee efi-quince-payload1-data -noreset"}})"
    "\n",
    R"({"file":"recordings/typical.registry.plist","outcome":"no plan","class":"unknown board","status":13,"reason":null,"board":"Zed-42","revision":3,"matches":[],"nearestMiss":null,"diagnostics":[{"text":"fernwick: Error reading plist: No files to support boardID: Zed-42","count":1},{"text":"fernwick: Unexpected format for config plist file.  Aborting","count":1}],"plan":null})"
    "\n",
    R"({"file":"recordings/bypass-nvram.registry.plist","outcome":"bypassed","class":"bypassed","status":0,"reason":null,"board":"Zed-42","revision":3,"matches":[],"nearestMiss":null,"diagnostics":[],"plan":null})"
    "\n",
    R"({"file":"none.registry.plist","outcome":"refused","class":"refused","status":66,"reason":"No such file or directory","board":null,"revision":null,"matches":[],"nearestMiss":null,"diagnostics":[],"plan":null})"
    "\n",
    R"({"file":"recordings/bare-switch.registry.plist","outcome":"abnormal end","class":"fault","status":null,"reason":"SIGABRT","board":"Zed-42","revision":3,"matches":[],"nearestMiss":null,"diagnostics":[],"plan":null})"
    "\n",
};

TEST(Survey, AsATableShowsEveryOutcomeAndTheTotals) {
  ExpectOutcome(
      SurveyEachOutcome({}),
      {"66",
       "FILE                                         BOARD     REV  STATUS      CLASS          "
       "TYPE               RID  PORT  INSTALLED     VERSION  IMAGE\n"
       "../examples/thunderbolt-only.registry.plist  Zed-1A06  1    0           planned        "
       "LegacyThunderbolt  2    -     23.020000001  24       ridge-24.00.bin\n"
       "                                                                                       "
       "LegacyThunderbolt  3    -     23.060000001  24       ridge-24.00.bin\n"
       "recordings/typical.registry.plist            Zed-42    3    13          unknown board\n"
       "    1 x fernwick: Error reading plist: No files to support boardID: Zed-42\n"
       "    1 x fernwick: Unexpected format for config plist file.  Aborting\n"
       "recordings/bypass-nvram.registry.plist       Zed-42    3    0 bypassed  bypassed\n"
       "none.registry.plist                          -         -    66 refused  refused\n"
       "    No such file or directory\n"
       "recordings/bare-switch.registry.plist        Zed-42    3    SIGABRT     fault\n" +
           std::string(Totals),
       ""});
}

TEST(Survey, AsNdjsonIsARowALine) {
  std::string rows;
  for (const auto& row : Rows) rows += row;
  ExpectOutcome(SurveyEachOutcome({"--format", "ndjson"}), {"66", rows, Totals});
}

TEST(Survey, AsCsvIsALineForEveryMatchOrComputer) {
  ExpectOutcome(
      SurveyEachOutcome({"--format", "csv"}),
      {"66",
       "file,outcome,status,reason,board,revision,type,rid,port "
       "address,installed,version,image,diagnostics,image "
       "missing,priority,SetNVRAM,ClearNVRAM,options,class,miss key,miss,miss type,miss "
       "personality,miss controller\r\n"
       "../examples/thunderbolt-only.registry.plist,plan,0,,Zed-1A06,1,LegacyThunderbolt,2,,23."
       "020000001,24,ridge-24.00.bin,,,30,{},[],"
       "'-g -o -sr 2 0 -ee efi-quince-payload0-data -g -o -sr 3 0 -ee efi-quince-payload1-data "
       "-noreset,planned,,,,,\r\n"
       "../examples/thunderbolt-only.registry.plist,plan,0,,Zed-1A06,1,LegacyThunderbolt,3,,23."
       "060000001,24,ridge-24.00.bin,,,30,{},[],"
       "'-g -o -sr 2 0 -ee efi-quince-payload0-data -g -o -sr 3 0 -ee efi-quince-payload1-data "
       "-noreset,planned,,,,,\r\n"
       "recordings/typical.registry.plist,no plan,13,,Zed-42,3,,,,,,,1 x fernwick: Error reading "
       "plist: No files to support boardID: Zed-42; 1 x fernwick: Unexpected format for config "
       "plist file.  Aborting,,,,,,unknown board,,,,,\r\n"
       "recordings/bypass-nvram.registry.plist,bypassed,0,,Zed-42,3,,,,,,,,,,,,,bypassed,,,,,\r\n"
       "none.registry.plist,refused,66,No such file or directory,,,,,,,,,,,,,,,refused,,,,,\r\n"
       "recordings/bare-switch.registry.plist,abnormal "
       "end,,SIGABRT,Zed-42,3,,,,,,,,,,,,,fault,,,,,\r\n",
       Totals});
}

TEST(Survey, AsJunitIsATestCaseForEveryComputer) {
  ExpectOutcome(
      SurveyEachOutcome({"--format", "junit"}),
      {"66",
       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
       "<testsuites>\n"
       "  <testsuite name=\"fernwick-lab survey\" tests=\"5\" failures=\"2\" errors=\"0\" "
       "skipped=\"0\">\n"
       "    <testcase classname=\"Zed-1A06\" "
       "name=\"../examples/thunderbolt-only.registry.plist\">\n"
       "      <system-out>\n"
       "plan, status 0, board Zed-1A06, revision 1\n"
       "class planned\n"
       "LegacyThunderbolt: RID 2, port -, 23.020000001 to 24, ridge-24.00.bin\n"
       "LegacyThunderbolt: RID 3, port -, 23.060000001 to 24, ridge-24.00.bin\n"
       "plan: priority 30, SetNVRAM {}, ClearNVRAM [], options -g -o -sr 2 0 -ee "
       "efi-quince-payload0-data -g -o -sr 3 0 -ee efi-quince-payload1-data -noreset\n"
       "      </system-out>\n"
       "    </testcase>\n"
       "    <testcase classname=\"Zed-42\" name=\"recordings/typical.registry.plist\">\n"
       "      <system-out>\n"
       "no plan, status 13, board Zed-42, revision 3\n"
       "class unknown board\n"
       "1 x fernwick: Error reading plist: No files to support boardID: Zed-42\n"
       "1 x fernwick: Unexpected format for config plist file.  Aborting\n"
       "      </system-out>\n"
       "    </testcase>\n"
       "    <testcase classname=\"Zed-42\" name=\"recordings/bypass-nvram.registry.plist\">\n"
       "      <system-out>\n"
       "bypassed, status 0, board Zed-42, revision 3\n"
       "class bypassed\n"
       "      </system-out>\n"
       "    </testcase>\n"
       "    <testcase classname=\"-\" name=\"none.registry.plist\">\n"
       "      <failure type=\"refused\" message=\"No such file or directory\"/>\n"
       "      <system-out>\n"
       "refused, status 66 (No such file or directory), board -, revision -\n"
       "class refused\n"
       "      </system-out>\n"
       "    </testcase>\n"
       "    <testcase classname=\"Zed-42\" name=\"recordings/bare-switch.registry.plist\">\n"
       "      <failure type=\"abnormal end\" message=\"SIGABRT\"/>\n"
       "      <system-out>\n"
       "abnormal end, status - (SIGABRT), board Zed-42, revision 3\n"
       "class fault\n"
       "      </system-out>\n"
       "    </testcase>\n"
       "  </testsuite>\n"
       "</testsuites>\n",
       Totals});
}

// A saved survey in which one row is changed, one is missing and one is added.
class ExpectedSurvey : public ::testing::Test {
 protected:
  ChildOutcome SurveyAgainst(const std::string& saved, const std::string& format) {
    return SurveyEachOutcome(
        {"--expect", directory_.Write("saved.ndjson", saved), "--format", format});
  }

  static std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
  }

  const std::string changedRow_ = Replaced(Rows[0], "\"version\":24", "\"version\":25");
  const std::string missingRow_ = Replaced(Rows[3], "none", "gone");
  const std::string saved_ = missingRow_ + Rows[4] + Rows[2] + changedRow_ + Rows[1];
  const std::string changes_ = "not as expected: 1 changed, 1 additional, 1 missing\n";

 private:
  testing::TemporaryDirectory directory_;
};

TEST_F(ExpectedSurvey, ThatIsFoundInAnyOrderIsNotADifference) {
  ExpectOutcome(SurveyAgainst(Rows[4] + Rows[2] + Rows[0] + Rows[3] + Rows[1], "table"),
                {"0", Totals + std::string("as expected\n"), ""});
}

TEST_F(ExpectedSurvey, ShowsTheLinesThatDiffer) {
  ExpectOutcome(SurveyAgainst(saved_, "table"),
                {"1",
                 "../examples/thunderbolt-only.registry.plist: changed\n"
                 "  - LegacyThunderbolt: RID 2, port -, 23.020000001 to 25, ridge-24.00.bin\n"
                 "  + LegacyThunderbolt: RID 2, port -, 23.020000001 to 24, ridge-24.00.bin\n"
                 "none.registry.plist: additional\n"
                 "  + refused, status 66 (No such file or directory), board -, revision -\n"
                 "  + class refused\n"
                 "gone.registry.plist: missing\n"
                 "  - refused, status 66 (No such file or directory), board -, revision -\n"
                 "  - class refused\n" +
                     std::string(Totals) + changes_,
                 ""});
}

TEST_F(ExpectedSurvey, AsNdjsonHasBothRows) {
  const auto row = [](const std::string& text) { return text.substr(0, text.size() - 1); };
  ExpectOutcome(
      SurveyAgainst(saved_, "ndjson"),
      {"1",
       R"({"file":"../examples/thunderbolt-only.registry.plist","difference":"changed","expected":)" +
           row(changedRow_) + ",\"found\":" + row(Rows[0]) + "}\n" +
           R"({"file":"none.registry.plist","difference":"additional","expected":null,"found":)" +
           row(Rows[3]) + "}\n" +
           R"({"file":"gone.registry.plist","difference":"missing","expected":)" +
           row(missingRow_) + ",\"found\":null}\n",
       Totals + changes_});
}

TEST_F(ExpectedSurvey, AsCsvHasBothSides) {
  const std::string names =
      "difference,side,file,outcome,status,reason,board,revision,type,rid,port "
      "address,installed,version,image,diagnostics,image "
      "missing,priority,SetNVRAM,ClearNVRAM,options,class,miss key,miss,miss type,miss "
      "personality,miss controller\r\n";
  ExpectOutcome(SurveyAgainst(missingRow_ + Rows[0] + Rows[1] + Rows[2] + Rows[4], "csv"),
                {"1",
                 names + "additional,found,none.registry.plist,refused,66,No such file or "
                         "directory,,,,,,,,,,,,,,,refused,,,,,\r\n"
                         "missing,expected,gone.registry.plist,refused,66,No such file or "
                         "directory,,,,,,,,,,,,,,,refused,,,,,\r\n",
                 Totals + std::string("not as expected: 0 changed, 1 additional, 1 missing\n")});
}

TEST_F(ExpectedSurvey, AsJunitFailsOnlyWhatDiffers) {
  const auto outcome = SurveyAgainst(Rows[0] + Rows[1] + Rows[2] + Rows[3] + Rows[4], "junit");
  EXPECT_EQ(outcome.status, "0");
  const std::string head =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n"
      "  <testsuite name=\"fernwick-lab survey\" tests=\"5\" failures=\"0\" errors=\"0\" "
      "skipped=\"0\">\n";
  EXPECT_EQ(outcome.standardOutput.substr(0, head.size()), head);
}

// An earlier version saved neither classes nor nearest misses.
TEST_F(ExpectedSurvey, WithoutClassesIsComparedWithoutThem) {
  const auto former = [](const std::string& row, const std::string& computerClass) {
    return Replaced(Replaced(row, "\"class\":\"" + computerClass + "\",", ""),
                    "\"nearestMiss\":null,", "");
  };
  const auto rest = Rows[3] + Rows[4] + former(Rows[2], "bypassed");
  const auto planned = former(Rows[0], "planned");
  const auto unknown = former(Rows[1], "unknown board");
  ExpectOutcome(SurveyAgainst(rest + planned + unknown, "table"),
                {"0", Totals + std::string("as expected\n"), ""});
  const auto csv = SurveyAgainst(rest + planned + Replaced(unknown, "13", "14"), "csv");
  EXPECT_EQ(csv.status, "1");
  EXPECT_NE(csv.standardOutput.find("Aborting,,,,,,,,,,,\r\n"), std::string::npos);
  EXPECT_NE(csv.standardOutput.find("Aborting,,,,,,unknown board,,,,,\r\n"), std::string::npos);
}

TEST_F(ExpectedSurvey, ThatIsMalformedIsRefusedWithItsLocation) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("saved.ndjson", Rows[0] + "{\"file\":\"x\"}\n");
  ExpectOutcome(SurveyEachOutcome({"--expect", path}),
                {"65", "", "fernwick-lab: " + path + ": 2: this is not a row of a survey\n"});
  ExpectOutcome(SurveyEachOutcome({"--expect", "/no-such-file"}),
                {"66", "", "fernwick-lab: /no-such-file: No such file or directory\n"});
  ExpectOutcome(SurveyEachOutcome({"--expect", directory.Path()}),
                {"66", "", "fernwick-lab: " + directory.Path() + ": Is a directory\n"});
}

TEST(Survey, OfNothingIsAnError) {
  for (const char* format : {"table", "ndjson", "csv", "junit"}) {
    ExpectOutcome(Survey({"-p", "../examples/payload", "cases", "--format", format}),
                  {"66", "", "fernwick-lab: there is no recording in what is selected\n"});
  }
}

TEST(Survey, NeedsAPayload) {
  ExpectOutcome(Survey({"-p", "/nowhere", "recordings"}),
                {"66", "", "fernwick-lab: /nowhere/Fernwick: there is no such directory\n"});
  ExpectOutcome(
      Survey({"recordings"}),
      {"64", "", "fernwick-lab: --payload is required; see fernwick-lab survey --help\n"});
}

TEST(Survey, FailsOnTheClassesThatAreNamed) {
  const auto statusOn = [](const std::string& classes) {
    return Survey({"-p", "../examples/payload", "../examples", "--format", "ndjson", "--fail-on",
                   classes})
        .status;
  };
  for (const auto* classes : {"planned", "current", "no-controllers", "no-plan", "fault,current"}) {
    EXPECT_EQ(statusOn(classes), "1") << classes;
  }
  for (const auto* classes : {"blocked", "unmatched,unknown-board", "abnormal", "refused,bypassed",
                              "fault", "no-configuration"}) {
    EXPECT_EQ(statusOn(classes), "0") << classes;
  }
  ExpectOutcome(
      Survey({"-p", "../examples/payload", "../examples", "--fail-on", "current,no plan"}),
      {"64", "",
       "fernwick-lab: --fail-on: \"no plan\" is not one of planned, current, blocked, unmatched, "
       "no-controllers, unknown-board, no-configuration, bypassed, fault, refused, abnormal, "
       "no-plan; see fernwick-lab survey --help\n"});
}

// All formats but ndjson, whose rows are tested elsewhere.
TEST(Survey, WithoutAPlanShowsTheNearestMiss) {
  const auto outcome = [](const char* format) {
    return Survey({"-p", "../examples/payload", "../examples/up-to-date.registry.plist", "--format",
                   format})
        .standardOutput;
  };
  EXPECT_NE(outcome("table").find(
                "    nearest miss: Version 43.1 is not newer than the installed 43.100000001 "
                "(Thunderbolt, personality 1 on IOService:/bridge0/ridge0/port1/hpm0)\n"),
            std::string::npos);
  EXPECT_NE(outcome("junit").find(
                "class current\nnearest miss: Version 43.1 is not newer than the installed "
                "43.100000001 (Thunderbolt, personality 1 on "
                "IOService:/bridge0/ridge0/port1/hpm0)\n"),
            std::string::npos);
  EXPECT_NE(
      outcome("csv").find(",current,Version,43.1 is not newer than the installed "
                          "43.100000001,Thunderbolt,1,IOService:/bridge0/ridge0/port1/hpm0\r\n"),
      std::string::npos);
}

TEST(Survey, AcceptsTheVersionBypass) {
  const std::vector<std::string> arguments = {
      "-p", "../examples/payload", "../examples/up-to-date.registry.plist", "--format", "csv"};
  auto bypassing = arguments;
  bypassing.emplace_back("--bypassVersion");
  EXPECT_EQ(Survey(arguments).standardError,
            "1 computer: 0 with a plan, 1 without, 0 bypassed, 0 refused, 0 ended abnormally; 0 "
            "matches\n  classes: 1 current\n  board Zed-1A08: 1 current\n");
  EXPECT_EQ(Survey(bypassing).standardError,
            "1 computer: 1 with a plan, 0 without, 0 bypassed, 0 refused, 0 ended abnormally; 2 "
            "matches\n  classes: 1 planned\n  board Zed-1A08: 1 planned\n");
}

TEST(Survey, WhoseOutputIsLostStops) {
  const std::string lost = "fernwick-lab: standard output could not be written: ";
  for (const char* format : {"table", "ndjson", "csv", "junit"}) {
    ExpectOutcome(SurveyEachOutcome({"--format", format}, OutputTarget::FullDisk),
                  {"74", "", lost + "No space left on device\n"});
    ExpectOutcome(SurveyEachOutcome({"--format", format}, OutputTarget::BrokenPipe),
                  {"74", "", lost + "Broken pipe\n"});
    ExpectOutcome(SurveyEachOutcome({"--format", format}, OutputTarget::Closed),
                  {"74", "", lost + "Bad file descriptor\n"});
  }
}

// Though nothing more comes, and nothing says that nothing will.
TEST(Survey, WhoseOutputIsLostDoesNotWaitForStandardInput) {
  for (const char* jobs : {"-j1", "-j4"}) {
    const auto outcome = testing::RunChild(
        {"/bin/bash", "-c",
         "exec 3<> <(:); echo recordings/bypass-nvram.registry.plist >&3; \"$0\" survey -p "
         "../examples/payload --format ndjson \"$1\" - <&3 >/dev/full; echo $?",
         FERNWICK_LAB_PROGRAM, jobs},
        FERNWICK_GOLDEN_DIRECTORY);
    ExpectOutcome(outcome, {"0", "74\n",
                            "fernwick-lab: standard output could not be written: No space left on "
                            "device\n"});
  }
}

TEST(Survey, ShowsNothingOfAFileRaw) {
  const testing::TemporaryDirectory directory;
  directory.Write("a\x1B[31m,\"\xFF\n.registry.plist", "<dict/>");
  directory.Write("payload/Fernwick/README", "");
  const auto outcome = [&](const char* format) {
    return Survey({"-p", "payload", ".", "--format", format}, OutputTarget::Captured,
                  directory.Path())
        .standardOutput;
  };
  EXPECT_EQ(
      outcome("ndjson"),
      "{\"file\":\"./"
      "a\\u001b[31m,\\\"\uFFFD\\n.registry.plist\",\"outcome\":\"refused\",\"class\":\"refused\","
      "\"status\":65,\"reason\":\"\\\"Recording Version\\\" is missing\",\"board\":null,"
      "\"revision\":null,\"matches\":[],\"nearestMiss\":null,\"diagnostics\":[],\"plan\":null}\n");
  EXPECT_EQ(outcome("csv"),
            "file,outcome,status,reason,board,revision,type,rid,port "
            "address,installed,version,image,diagnostics,image "
            "missing,priority,SetNVRAM,ClearNVRAM,options,class,miss key,miss,miss type,miss "
            "personality,miss controller\r\n"
            "\"./a\\033[31m,\"\"\\377\\012.registry.plist\",refused,65,\"\"\"Recording "
            "Version\"\" is missing\",,,,,,,,,,,,,,,refused,,,,,\r\n");
  EXPECT_EQ(
      outcome("table"),
      "FILE                                  BOARD  REV  STATUS      CLASS    TYPE  RID  PORT  "
      "INSTALLED  VERSION  IMAGE\n"
      "./a\\033[31m,\"\\377\\012.registry.plist  -      -    65 refused  refused\n"
      "    \"Recording Version\" is missing\n"
      "1 computer: 0 with a plan, 0 without, 0 bypassed, 1 refused, 0 ended abnormally; 0 "
      "matches\n  classes: 1 refused\n");
}

TEST(Survey, AsCsvHasNoCellThatASpreadsheetReadsAsAFormula) {
  const testing::TemporaryDirectory directory;
  directory.Write("=1+1.registry.plist",
                  "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
                  "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key>"
                  "<data>QEE=</data></dict></dict></dict></dict>");
  directory.Write("payload/Fernwick/@A/Config.plist", "<dict/>");
  const auto outcome = Survey({"-p", "payload", "=1+1.registry.plist", "--format", "csv"},
                              OutputTarget::Captured, directory.Path());
  EXPECT_EQ(outcome.standardOutput,
            "file,outcome,status,reason,board,revision,type,rid,port "
            "address,installed,version,image,diagnostics,image "
            "missing,priority,SetNVRAM,ClearNVRAM,options,class,miss key,miss,miss type,miss "
            "personality,miss controller\r\n"
            "'=1+1.registry.plist,no plan,13,,'@A,0,,,,,,,,,,,,,no controllers,,,,,\r\n");
}

// The limit is above what the program needs and below what the recording does.
TEST(Survey, EndsWhereARecordingExhaustsMemory) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const testing::TemporaryDirectory directory;
  const auto large = directory.Write("b.registry.plist", "");
  std::filesystem::resize_file(large, std::size_t{1} << 28);
  directory.Write("a.registry.plist", testing::FaultyRecording());
  directory.Write("c.registry.plist", "<dict/>");
  directory.Write("payload/Fernwick/README", "");
  const auto outcome = testing::RunChild(
      {"/bin/sh", "-c",
       "ulimit -v 200000; exec \"$0\" survey -p payload . -j1 --format csv --max-size 1024",
       FERNWICK_LAB_PROGRAM},
      directory.Path());
  ExpectOutcome(outcome, {"71",
                          "file,outcome,status,reason,board,revision,type,rid,port "
                          "address,installed,version,image,diagnostics,image "
                          "missing,priority,SetNVRAM,ClearNVRAM,options,class,miss key,miss,miss "
                          "type,miss personality,miss controller\r\n"
                          "./a.registry.plist,abnormal end,,SIGABRT,,0,,,,,,,,,,,,,fault,,,,,\r\n",
                          "fernwick: out of memory\n"});
}

// For each signal, with one thread and with several that wait for input or for their turn.
class InterruptedSurvey : public ::testing::TestWithParam<std::tuple<int, const char*>> {
 protected:
  // What a process has open.
  static std::vector<std::string> OpenFiles(const std::string& process) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + process + "/fd")) {
      std::error_code gone;
      files.push_back(std::filesystem::read_symlink(entry.path(), gone));
    }
    return files;
  }

  // The temporary files that the survey has open.
  static std::vector<std::string> TemporaryFiles(const PipedProcess& survey) {
    const auto inherited = OpenFiles("self");
    auto files = OpenFiles(std::to_string(survey.Process()));
    std::erase_if(files, [&](const std::string& file) {
      return !file.starts_with("/tmp/") || std::ranges::find(inherited, file) != inherited.end();
    });
    return files;
  }
};

TEST_P(InterruptedSurvey, EndsByTheSignalAndLeavesNoProcessAndNoFile) {
  const auto [number, jobs] = GetParam();
  PipedProcess survey({FERNWICK_LAB_PROGRAM, "survey", "-p", "../examples/payload", jobs,
                       "--format", "ndjson", "-"},
                      FERNWICK_GOLDEN_DIRECTORY);
  survey.Write("recordings/bypass-nvram.registry.plist\n");
  EXPECT_EQ(survey.ReadLine(), Rows[2]);  // it works
  EXPECT_EQ(survey.Children(), std::vector<pid_t>{});
  EXPECT_EQ(TemporaryFiles(survey), std::vector<std::string>{});
  kill(survey.Process(), number);
  EXPECT_EQ(survey.Wait(), "SIG" + std::string(sigabbrev_np(number)));
}

INSTANTIATE_TEST_SUITE_P(ByEachSignal, InterruptedSurvey,
                         ::testing::Combine(::testing::Values(SIGINT, SIGTERM, SIGHUP),
                                            ::testing::Values("-j1", "-j3")));

TEST(Survey, ThatIsInterruptedHasShownTheRowsBefore) {
  PipedProcess survey(
      {FERNWICK_LAB_PROGRAM, "survey", "-p", "../examples/payload", "--format", "ndjson", "-"},
      FERNWICK_GOLDEN_DIRECTORY);
  survey.Write("recordings/bypass-nvram.registry.plist\n");
  EXPECT_EQ(survey.ReadLine(), Rows[2]);
  kill(survey.Process(), SIGINT);
  EXPECT_EQ(survey.Wait(), "SIGINT");
  EXPECT_EQ(survey.ReadLine(), "");
}

}  // namespace
}  // namespace fernwick
