#include "lab/survey/run.h"

#include <gtest/gtest.h>

#include "lab/support/tool_run.h"
#include "platform/file_system.h"
#include "testing/programs/many_computers.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

// A computer with two ports and a payload whose minimum version one of them misses.
class SurveyRun : public ::testing::Test {
 protected:
  SurveyRun() {
    directory_.Write("payload/Fernwick/Zed-1/Config.plist",
                     "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
                     "<key>Existing Min Version</key><integer>3</integer><key>Firmware</key>"
                     "<string>f.bin</string></dict></dict>");
  }

  std::string Write(const std::string& ports) {
    return directory_.Write(
        "a.registry.plist",
        "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
        "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key>"
        "<data>WmVkLTE=</data><key>board-rev</key><data>Aw==</data></dict></dict>"
        "<key>IOService</key><dict><key>Children</key><array>" +
            ports + "</array></dict></dict></dict>");
  }

  static std::string Port(const std::string& properties) {
    return "<dict><key>Name</key><string>p</string><key>Class</key><string>QuinceHPMDevice"
           "</string><key>Properties</key><dict>" +
           properties + "</dict></dict>";
  }

  std::string Survey(const Selected& selected, bool bypassVersion = false) {
    const auto options = ToolOptions(directory_.Path() + "/payload", bypassVersion);
    return PrintJsonRow(ToJson(*SurveyComputer(selected, options, MaxFileSize)));
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(SurveyRun, HasInItsRowTheControllersValuesAndThePlans) {
  const auto path = Write(Port("<key>Version</key><integer>4</integer><key>Address</key>"
                               "<integer>56</integer><key>RID</key><integer>2</integer>") +
                          Port("<key>Version</key><integer>1</integer>") +
                          Port("<key>Version</key><integer>2</integer>"));
  const auto head = "{\"file\":\"" + path + "\",";
  EXPECT_EQ(
      Survey({path}),
      head +
          R"("outcome":"plan","class":"planned","status":0,"reason":null,"board":"Zed-1","revision":3,)"
          R"("matches":[{"type":"LegacyUSBC","rid":2,"portAddress":56,"installed":4,)"
          R"("version":9,"image":"f.bin","imageMissing":true}],"nearestMiss":null,"diagnostics":[{"text":)"
          R"("** Min firmware version not met.  Aborting","count":2}],"plan":)"
          R"({"priority":0,"setNVRAM":{},"clearNVRAM":[],"options":)"
          R"("-g -os -o u -f efi-quince-payload0-data -noreset"}})"
          "\n");
}

TEST_F(SurveyRun, WithTheVersionBypassTakesAnyVersion) {
  const auto path = Write(Port(""));
  EXPECT_EQ(
      Survey({path}, true),
      "{\"file\":\"" + path +
          R"(","outcome":"plan","class":"planned","status":0,"reason":null,"board":"Zed-1","revision":3,)"
          R"("matches":[{"type":"LegacyUSBC","rid":null,"portAddress":null,)"
          R"("installed":null,"version":9,"image":"f.bin","imageMissing":true}],"nearestMiss":null,"diagnostics":[{"text":)"
          R"("** No current firmware version?","count":1}],"plan":)"
          R"({"priority":0,"setNVRAM":{},"clearNVRAM":[],"options":)"
          R"("-g -os -o u -f efi-quince-payload0-data -noreset"}})"
          "\n");
}

TEST_F(SurveyRun, SaysWhetherThePlannedImageIsThere) {
  const auto path = Write(Port("<key>Version</key><integer>4</integer>"));
  EXPECT_NE(Survey({path}).find("\"imageMissing\":true"), std::string::npos);
  directory_.Write("payload/Fernwick/Zed-1/f.bin", "");
  EXPECT_NE(Survey({path}).find("\"imageMissing\":false"), std::string::npos);
}

// Many controllers could repeat it.
TEST_F(SurveyRun, HasOnlyTheBeginOfALongImageName) {
  const auto path = Write(Port("<key>Version</key><integer>4</integer>"));
  directory_.Write("payload/Fernwick/Zed-1/Config.plist",
                   "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
                   "<key>Firmware</key><string>" +
                       std::string(511, 'x') + "\u00E9" + std::string(5000, 'y') +
                       "</string></dict></dict>");
  const auto row = Survey({path});
  EXPECT_NE(row.find("\"image\":\"" + std::string(511, 'x') +
                     " (the first of 5513 bytes)\",\"imageMissing\":true}"),
            std::string::npos)
      << row;
}

TEST_F(SurveyRun, WithoutAPlanHasTheNearestMiss) {
  const auto path = Write(Port("<key>Version</key><integer>2</integer>"));
  EXPECT_NE(Survey({path}).find(R"("class":"blocked","status":13,)"), std::string::npos);
  EXPECT_NE(Survey({path}).find(
                R"("nearestMiss":{"controller":"IOService:/p","type":"LegacyUSBC","personality":1,)"
                R"("key":"Existing Min Version","text":"3 is above the installed 2"})"),
            std::string::npos)
      << Survey({path});
}

TEST_F(SurveyRun, OfARefusedRecordingHasTheReason) {
  const auto path = directory_.Write("a.registry.plist", "<dict/>");
  EXPECT_EQ(
      Survey({path}),
      "{\"file\":\"" + path +
          R"(","outcome":"refused","class":"refused","status":65,"reason":"\"Recording Version\" is )"
          R"(missing","board":null,"revision":null,"matches":[],"nearestMiss":null,"diagnostics":[],"plan":null})"
          "\n");
}

TEST_F(SurveyRun, ThatEndsAbnormallyHasItsBoardAndNothingElse) {
  const auto path = directory_.Write("a.registry.plist", testing::FaultyRecording());
  EXPECT_EQ(
      Survey({path}),
      "{\"file\":\"" + path +
          R"(","outcome":"abnormal end","class":"fault","status":null,"reason":"SIGABRT",)"
          R"("board":null,"revision":0,"matches":[],"nearestMiss":null,"diagnostics":[],"plan":null})"
          "\n");
}

TEST_F(SurveyRun, OfWhatTheSelectionRefusedIsUnreadable) {
  EXPECT_EQ(
      Survey({"a", "Permission denied"}),
      R"({"file":"a","outcome":"refused","class":"refused","status":66,"reason":"Permission denied",)"
      R"("board":null,"revision":null,"matches":[],"nearestMiss":null,"diagnostics":[],"plan":null})"
      "\n");
}

}  // namespace
}  // namespace fernwick::lab
