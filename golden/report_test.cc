// The verb `report` as a process: whole pages.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::OutputTarget;

ChildOutcome Report(std::vector<std::string> arguments, const std::string& directory,
                    OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "report"});
  return testing::RunChild(arguments, directory, target);
}

// What is wrong with the page, line by line.
std::string FaultsOf(const std::string& page) {
  return testing::RunChild({"python3", FERNWICK_GOLDEN_DIRECTORY "/report_page.py", page}, "/")
      .standardOutput;
}

TEST(Report, OfTheExamplesIsThePage) {
  const auto outcome =
      Report({"-p", "examples/fixed", "--old", "examples/payload", "-o", "-", "examples"},
             FERNWICK_SOURCE_DIRECTORY);
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardError, "");
  EXPECT_EQ(outcome.standardOutput, testing::ReadFile(FERNWICK_GOLDEN_DIRECTORY "/report.html"));
  EXPECT_EQ(FaultsOf(FERNWICK_GOLDEN_DIRECTORY "/report.html"), "");
}

class ReportedFleet : public ::testing::Test {
 protected:
  std::string Page() const { return testing::ReadFile(directory_.Path() + "/page.html"); }

  testing::TemporaryDirectory directory_;
};

TEST_F(ReportedFleet, HasTheSamePageForAnyNumberOfJobs) {
  testing::WriteManyComputers(directory_, 300, 37);
  const std::vector<std::string> line = {"-p",      "payload", "-o",        "page.html",
                                         "--force", "-j1",     "computers", "computers/0"};
  ExpectOutcome(Report(line, directory_.Path()), {"0", "", ""});
  const auto page = Page();
  auto another = line;
  another[5] = "-j7";
  ExpectOutcome(Report(another, directory_.Path()), {"0", "", ""});
  EXPECT_EQ(Page(), page);
  EXPECT_EQ(FaultsOf(directory_.Path() + "/page.html"), "");
}

// Each text of a computer and of the payloads begins an element and an attribute.
TEST_F(ReportedFleet, EscapesEveryText) {
  const std::string raw = "<script>alert(1)</script>\"onload=\u202Ex";
  const std::string text = "&lt;script&gt;alert(1)&lt;/script&gt;\"onload=\u202Ex";
  const std::string name = "&lt;script&gt;alert(1)&lt;script&gt;\"onload=\u202Ex";
  const std::string board = "<script>alert(1)<script>\"onload=\u202Ex";
  const auto configuration = [&](const std::string& version) {
    return "<dict><key>" + text + "</key><string>" + text +
           "</string><key>USBC</key><array><dict><key>" + text +
           "</key><true/><key>Version</key><integer>" + version +
           "</integer><key>Firmware</key><string>" + text + version +
           "</string><key>RID</key><string>" + text + "</string><key>SetNVRAM</key><dict><key>" +
           text + "</key><string>" + text +
           "</string></dict></dict></array><key>LegacyUSBC</key><dict>"
           "<key>Version</key><integer>" +
           version + "</integer><key>Firmware</key><string>" + text + version +
           "</string><key>SetNVRAM</key><dict><key>" + text + "</key><string>" + text + version +
           "</string></dict></dict></dict>";
  };
  const auto payload = "new" + board;
  directory_.Write(payload + "/Fernwick/" + board + "/Config.plist", configuration("9"));
  directory_.Write("old/Fernwick/" + board + "/Config.plist", configuration("7"));
  const auto base64 =
      testing::RunChild(
          {"python3", "-c",
           "import base64,sys; print(base64.b64encode(sys.argv[1].encode()).decode(), end='')",
           board},
          "/")
          .standardOutput;
  const auto computer = [&](const std::string& version) {
    return "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
           "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key><data>" +
           base64 +
           "</data></dict></dict><key>IOService</key><dict><key>Children</"
           "key><array><dict><key>Name</key><string>" +
           name +
           "</string><key>Class</key><string>QuinceHPMDevice</string><key>Properties</"
           "key><dict><key>" +
           text + "</key><string>" + text + "</string><key>UUID</key><string>" + text +
           "</string><key>Version</key><integer>" + version +
           "</integer></dict></dict></array></dict></dict></dict>";
  };
  directory_.Write("fleet/1" + board + ".registry.plist", computer("4"));
  directory_.Write("fleet/2" + board + ".registry.plist", computer("32"));
  directory_.Write("fleet/3" + board + ".registry.plist", raw);
  const auto outcome =
      Report({"-p", payload, "--old", "old", "--title", raw, "-o", "page.html", "fleet"},
             directory_.Path());
  ExpectOutcome(outcome, {"0", "", ""});
  EXPECT_EQ(FaultsOf(directory_.Path() + "/page.html"), "");
  const auto page = Page();
  EXPECT_EQ(page.find("<script"), std::string::npos);
  EXPECT_EQ(page.find("\"onload"), std::string::npos);
  EXPECT_EQ(page.find("\u202E"), std::string::npos);
  EXPECT_NE(page.find("&lt;script&gt;alert(1)&lt;/script&gt;&quot;onload=\\u202ex"),
            std::string::npos);
}

TEST_F(ReportedFleet, IsWrittenOnlyWhereThereIsNoFile) {
  testing::WriteManyComputers(directory_, 2);
  directory_.Write("page.html", "kept");
  ExpectOutcome(
      Report({"-p", "payload", "-o", "page.html", "computers"}, directory_.Path()),
      {"74", "", "fernwick-lab: page.html: there is a file of that name; --force replaces it\n"});
  EXPECT_EQ(Page(), "kept");
  EXPECT_EQ(
      Report({"-p", "payload", "-o", "absent/page.html", "computers"}, directory_.Path()).status,
      "74");
  EXPECT_EQ(
      Report({"-p", "payload", "-o", "-", "computers"}, directory_.Path(), OutputTarget::FullDisk)
          .status,
      "74");
}

TEST_F(ReportedFleet, EndsWithTheStatusOfWhatCannotBeUsed) {
  testing::WriteManyComputers(directory_, 2);
  const auto status = [&](std::vector<std::string> line) {
    line.insert(line.begin(), {"-o", "page.html", "--force"});
    return Report(line, directory_.Path()).status;
  };
  EXPECT_EQ(status({"-p", "absent", "computers"}), "66");
  EXPECT_EQ(status({"-p", "payload", "--old", "absent", "computers"}), "66");
  EXPECT_EQ(status({"computers"}), "64");
  std::filesystem::create_directory(directory_.Path() + "/empty");
  EXPECT_EQ(status({"-p", "payload", "empty"}), "66");
  EXPECT_FALSE(std::filesystem::exists(directory_.Path() + "/page.html"));
  EXPECT_EQ(status({"-p", "payload", "absent.registry.plist"}), "66");
  directory_.Write("bad.registry.plist", "<x");
  EXPECT_EQ(status({"-p", "payload", "bad.registry.plist", "computers"}), "65");
  EXPECT_NE(Page().find("recording is refused"), std::string::npos);
  ExpectOutcome(
      Report({"-p", "payload", "-o", "page.html", "--force", "computers", "absent.registry.plist",
              "bad.registry.plist"},
             directory_.Path()),
      {"66", "",
       "fernwick-lab: absent.registry.plist: No such file or directory\n"
       "fernwick-lab: bad.registry.plist: line 1, column 2: data contains something other than "
       "hexadecimal digits\n"});
  directory_.Write("payload/Fernwick/Zed-9/Config.plist", "<x");
  EXPECT_EQ(status({"-p", "payload", "computers"}), "65");
  std::filesystem::remove(directory_.Path() + "/page.html");
  directory_.Write("payload/.fernwick-lint.json", "x");
  EXPECT_EQ(status({"-p", "payload", "computers"}), "65");
  EXPECT_FALSE(std::filesystem::exists(directory_.Path() + "/page.html"));
}

}  // namespace
}  // namespace fernwick
