// `survey --expect`: how expectations are saved and found again.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;

// A fleet of one computer, a payload for it and a saved survey in a directory of its own.
class SavedSurvey : public ::testing::Test {
 protected:
  SavedSurvey() {
    directory_.Write(
        "fleet/a.registry.plist",
        "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
        "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key>"
        "<data>WmVkLTE=</data></dict></dict><key>IOService</key><dict><key>Children</key><array>"
        "<dict><key>Name</key><string>p</string><key>Class</key><string>QuinceHPMDevice</string>"
        "<key>Properties</key><dict><key>Version</key><integer>1</integer></dict></dict></array>"
        "</dict></dict></dict>");
    directory_.Write("payload/Fernwick/Zed-1/a.bin", "");
    directory_.Write("saved/README", "");
    WritePayload("<key>Priority</key><integer>20</integer>");
  }

  void WritePayload(const std::string& settings) const {
    directory_.Write("payload/Fernwick/Zed-1/Config.plist",
                     "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
                     "<key>Firmware</key><string>a.bin</string>" +
                         settings + "</dict></dict>");
  }

  ChildOutcome Survey(const std::string& words, const std::string& directory = ".") const {
    return testing::RunChild({"/bin/sh", "-c", "exec \"$0\" survey " + words, FERNWICK_LAB_PROGRAM},
                             directory_.Path() + "/" + directory);
  }

  ChildOutcome Update() const {
    return Survey("-p payload fleet --expect saved/s.ndjson --update --format csv");
  }

  // The difference and the number of changed rows.
  void ExpectChangedPlan(const std::string& before, const std::string& after) const {
    const std::string options = ", options -g -os -o u -f efi-quince-payload0-data -noreset\n";
    ExpectOutcome(
        Survey("-p payload fleet --expect saved/s.ndjson"),
        {"1",
         "fleet/a.registry.plist: changed\n  - plan: " + before + options + "  + plan: " + after +
             options + Totals + "not as expected: 1 changed, 0 additional, 0 missing\n",
         ""});
  }

  const std::string Totals =
      "1 computer: 1 with a plan, 0 without, 0 bypassed, 0 refused, 0 ended abnormally; 1 match\n"
      "  classes: 1 planned\n"
      "  board Zed-1: 1 planned\n";
  const std::string AsExpected = Totals + "as expected\n";

  testing::TemporaryDirectory directory_;
};

TEST_F(SavedSurvey, IsCreatedAndWrittenAgain) {
  EXPECT_EQ(Update().status, "0");
  const auto first = testing::ReadFile(directory_.Path() + "/saved/s.ndjson");
  EXPECT_EQ(first.substr(0, 38), "{\"file\":\"../fleet/a.registry.plist\",\"o");
  WritePayload("<key>Priority</key><integer>30</integer>");
  ExpectChangedPlan("priority 20, SetNVRAM {}, ClearNVRAM []",
                    "priority 30, SetNVRAM {}, ClearNVRAM []");
  const auto update = Update();
  EXPECT_EQ(update.status, "0");
  EXPECT_EQ(update.standardError, Totals +
                                      "not as expected: 1 changed, 0 additional, 0 missing\n"
                                      "saved/s.ndjson: 1 row saved\n");
  ExpectOutcome(Survey("-p payload fleet --expect saved/s.ndjson"), {"0", AsExpected, ""});
}

TEST_F(SavedSurvey, IsFoundByEverySpellingOfAPath) {
  Update();
  for (const std::string path :
       {"fleet", "./fleet", "saved/../fleet", "\"$PWD/fleet\"", "fleet/a.registry.plist"}) {
    ExpectOutcome(Survey("-p payload --expect saved/s.ndjson " + path), {"0", AsExpected, ""});
  }
  ExpectOutcome(Survey("-p ../payload --expect s.ndjson ../fleet", "saved"), {"0", AsExpected, ""});
  ExpectOutcome(Survey("-p ../payload --expect ../saved/s.ndjson .", "fleet"),
                {"0", AsExpected, ""});
}

TEST_F(SavedSurvey, IsReadFromStandardInput) {
  ExpectOutcome(Survey("-p payload fleet --format ndjson 2>&- | \"$0\" survey -p payload ./fleet "
                       "--expect -"),
                {"0", AsExpected, ""});
}

TEST_F(SavedSurvey, ThatWasPrintedElsewhereIsFoundByTheWorkingDirectory) {
  Survey("-p payload fleet --format ndjson > saved/s.ndjson");
  ExpectOutcome(Survey("-p payload ./fleet --expect saved/s.ndjson"), {"0", AsExpected, ""});
}

TEST_F(SavedSurvey, IsComparedInTheWholePlan) {
  Update();
  const std::string before = "priority 20, SetNVRAM {}, ClearNVRAM []";
  const std::string priority = "<key>Priority</key><integer>20</integer>";
  WritePayload(priority + "<key>SetNVRAM</key><dict><key>a</key><string>1</string></dict>");
  ExpectChangedPlan(before, "priority 20, SetNVRAM {\"a\":\"1\"}, ClearNVRAM []");
  WritePayload(priority + "<key>ClearNVRAM</key><array><string>b</string></array>");
  ExpectChangedPlan(before, "priority 20, SetNVRAM {}, ClearNVRAM [\"b\"]");
}

TEST_F(SavedSurvey, OfAnEarlierVersionLacksThePlan) {
  Update();
  const auto path = directory_.Path() + "/saved/s.ndjson";
  auto row = testing::ReadFile(path);
  row.replace(row.find(",\"imageMissing\":false"), 21, "");
  row.replace(row.find(",\"plan\":"), std::string::npos, "}\n");
  directory_.Write("saved/s.ndjson", row);
  EXPECT_EQ(Survey("-p payload fleet --expect saved/s.ndjson").status, "1");
  EXPECT_EQ(Update().status, "0");
}

TEST_F(SavedSurvey, IsNotUpdatedWhenItIsNotASurvey) {
  directory_.Write("saved/s.ndjson", "precious\n");
  EXPECT_EQ(Update().status, "65");
  EXPECT_EQ(testing::ReadFile(directory_.Path() + "/saved/s.ndjson"), "precious\n");
}

TEST_F(SavedSurvey, OfAnyDepthIsRefused) {
  directory_.Write("saved/s.ndjson", "{\"file\":" + std::string(66'000, '[') + "\n");
  EXPECT_EQ(Survey("-p payload fleet --expect saved/s.ndjson").status, "65");
  Update();
  directory_.Write("saved/s.ndjson",
                   "{\"file\":\"a\",\"matches\":[{\"rid\":" + std::string(66'000, '[') +
                       std::string(66'000, ']') + "}]}\n");
  EXPECT_EQ(Survey("-p payload fleet --expect saved/s.ndjson").status, "65");
}

TEST_F(SavedSurvey, NeedsOptionsThatGoTogether) {
  for (const std::string words : {"--update fleet", "--expect - -", "--expect - --update fleet"}) {
    EXPECT_EQ(Survey("-p payload " + words).status, "64") << words;
  }
}

TEST_F(SavedSurvey, SaysWhichPlannedImageIsMissing) {
  WritePayload("<key>Priority</key><integer>20</integer>");
  const auto image = directory_.Path() + "/payload/Fernwick/Zed-1/a.bin";
  Update();
  EXPECT_EQ(std::remove(image.c_str()), 0);
  EXPECT_EQ(
      Survey("-p payload fleet").standardOutput,
      "FILE                    BOARD  REV  STATUS  CLASS    TYPE        RID  PORT  INSTALLED  "
      "VERSION  IMAGE\n"
      "fleet/a.registry.plist  Zed-1  0    0       planned  LegacyUSBC  -    -     1          "
      "9        a.bin\n"
      "    image missing: a.bin\n"
      "1 computer: 1 with a plan, 0 without, 0 bypassed, 0 refused, 0 ended abnormally; 1 "
      "match, 1 without the image file\n"
      "  classes: 1 planned\n"
      "  board Zed-1: 1 planned\n");
  EXPECT_EQ(Survey("-p payload fleet --expect saved/s.ndjson").status, "1");
}

}  // namespace
}  // namespace fernwick
