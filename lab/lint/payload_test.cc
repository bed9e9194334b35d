// What cannot be read in a payload, and how much of one kind is listed.

#include "lab/lint/payload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

constexpr char OnePort[] =
    "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>200</integer>"
    "<key>Firmware</key><string>a.bin</string><key>Priority</key><integer>1</integer></dict></"
    "dict>";

// A payload of one board without mistakes, which everybody may read.
class LintedPayload : public ::testing::Test {
 protected:
  LintedPayload() {
    fs::permissions(directory_.Path(), fs::perms(0755));
    directory_.Write("Fernwick/PortFlash.efi", "port");
    directory_.Write("Fernwick/Zed-42/a.bin", "image");
    directory_.Write("Fernwick/Zed-42/Config.plist", OnePort);
  }

  std::string Path(const std::string& path) const { return directory_.Path() + "/" + path; }

  // What a user without privileges gets: "PATH: MESSAGE [ID]" of each finding, after a last "/".
  Lines Lint(const std::vector<std::string>& boards = {}) {
    Lines lines;
    const testing::Unprivileged unprivileged;
    result_ = LintPayload(directory_.Path(), boards, [&](const Finding& finding) {
      lines.push_back(finding.path.substr(finding.path.rfind('/') + 1) + ": " + finding.message +
                      " [" + std::string(finding.rule->id) + "]");
    });
    return lines;
  }

  testing::TemporaryDirectory directory_;
  PayloadLinting result_;
};

TEST_F(LintedPayload, IsRight) {
  EXPECT_EQ(Lint(), Lines{});
  EXPECT_EQ(result_.status, 0);
}

TEST_F(LintedPayload, HasAnImageThatCannotBeRead) {
  fs::permissions(Path("Fernwick/Zed-42/a.bin"), fs::perms(0200));
  EXPECT_EQ(Lint(), Lines{"Config.plist: \"a.bin\" cannot be read: Permission denied "
                          "[unreadable-file]"});
}

TEST_F(LintedPayload, HasAFlashingUtilityThatCannotBeRead) {
  fs::permissions(Path("Fernwick/PortFlash.efi"), fs::perms(0200));
  EXPECT_EQ(Lint(), Lines{"Config.plist: \"PortFlash.efi\" cannot be read: Permission denied "
                          "[unreadable-file]"});
}

TEST_F(LintedPayload, MayNotBeEntered) {
  fs::permissions(directory_.Path(), fs::perms(0644));
  EXPECT_EQ(Lint(), Lines{});
  EXPECT_EQ(result_.status, 66);
  EXPECT_EQ(result_.error, directory_.Path() + "/Fernwick: Permission denied");
}

TEST_F(LintedPayload, HasBoardsThatMayNotBeEntered) {
  fs::permissions(Path("Fernwick"), fs::perms(0644));
  EXPECT_EQ(Lint(), Lines{"Fernwick: it cannot be read: Permission denied [unreadable-file]"});
  EXPECT_EQ(result_.status, 66);
  fs::permissions(Path("Fernwick"), fs::perms(0755));
  fs::permissions(Path("Fernwick/Zed-42"), fs::perms(0644));
  EXPECT_EQ(Lint(), (Lines{"Zed-42: it cannot be read: Permission denied [unreadable-file]",
                           "Config.plist: it cannot be read: Permission denied "
                           "[unreadable-file]"}));
  EXPECT_EQ(result_.status, 66);
}

TEST_F(LintedPayload, HasBoardsThatCannotBeListed) {
  fs::permissions(Path("Fernwick"), fs::perms(0311));
  EXPECT_EQ(Lint({"Zed-42"}), Lines{});
  EXPECT_EQ(result_.status, 0);
  EXPECT_EQ(Lint(), Lines{"Fernwick: it cannot be read: Permission denied [unreadable-file]"});
  EXPECT_EQ(result_.status, 66);
}

TEST_F(LintedPayload, ListsTheFirstUnusedFilesAndCountsTheOthers) {
  for (int i = 100; i < 202; ++i) {
    directory_.Write("Fernwick/Zed-42/" + std::to_string(i) + ".bin", "");
  }
  const auto lines = Lint();
  ASSERT_EQ(lines.size(), MaxListed + 1);
  EXPECT_EQ(lines.front(), "Zed-42: 2 more findings of this kind [unused-file]");
  EXPECT_EQ(lines[1], "100.bin: no personality of the board names it [unused-file]");
  EXPECT_EQ(lines.back(), "199.bin: no personality of the board names it [unused-file]");
}

TEST_F(LintedPayload, HasPathsRelativeToIt) {
  directory_.Write("Fernwick/Zed-42/old.bin", "");
  directory_.Write("Fernwick/Zed-43/README", "");
  Lines paths;
  const auto filter = [&](const FindingIdentity& identity) {
    paths.emplace_back(identity.path);
    return false;
  };
  const auto fail = [](const Finding&) { FAIL(); };
  LintPayload(directory_.Path() + "//", {}, fail, filter);
  EXPECT_EQ(paths, (Lines{"Fernwick/Zed-42/old.bin", "Fernwick/Zed-43"}));
  paths.clear();
  fs::remove_all(Path("Fernwick"));
  LintPayload(directory_.Path() + "//", {}, fail, filter);
  EXPECT_EQ(paths, Lines{""});
}

}  // namespace
}  // namespace fernwick::lab
