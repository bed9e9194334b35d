#include "lab/survey/absolute_paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

TEST(AbsolutePaths, OfOneFileAreTheSame) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.Write("fleet/a.plist", "");
  std::filesystem::create_directory_symlink(directory.Path() + "/fleet",
                                            directory.Path() + "/link");
  AbsolutePaths paths(directory.Path());
  const auto expected = std::filesystem::canonical(file).string();
  for (const std::string path : {"fleet/a.plist", "./fleet/a.plist", "fleet/../fleet//a.plist",
                                 "link/a.plist", "fleet/a.plist"}) {
    EXPECT_EQ(paths.Of(path), expected) << path;
  }
  EXPECT_EQ(paths.Of(file), expected);
  EXPECT_EQ(AbsolutePaths(directory.Path() + "/link").Of("a.plist"), expected);
}

TEST(AbsolutePaths, OfAFileNeedNotExist) {
  const testing::TemporaryDirectory directory;
  AbsolutePaths paths(directory.Path());
  EXPECT_EQ(paths.Of("none/./b/../a.plist"), paths.Of("none/a.plist"));
  EXPECT_EQ(paths.Of("none/."), paths.Of("none"));
  EXPECT_EQ(paths.Of("-"), "-");
}

TEST(AbsolutePaths, LeaveTheFileItselfALink) {
  const testing::TemporaryDirectory directory;
  directory.Write("a.plist", "");
  std::filesystem::create_symlink("a.plist", directory.Path() + "/b.plist");
  AbsolutePaths paths(directory.Path());
  EXPECT_NE(paths.Of("a.plist"), paths.Of("b.plist"));
}

TEST(AbsolutePaths, AreMadeRelativeAgain) {
  AbsolutePaths paths("/none/saved");
  EXPECT_EQ(paths.RelativeTo("/none/saved/fleet/a"), "fleet/a");
  EXPECT_EQ(paths.RelativeTo("/none/fleet/a"), "../fleet/a");
  EXPECT_EQ(paths.RelativeTo("-"), "-");
}

}  // namespace
}  // namespace fernwick::lab
