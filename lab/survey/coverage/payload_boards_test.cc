#include "lab/survey/coverage/payload_boards.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

TEST(PayloadBoards, AreTheDirectoriesInTheOrderOfTheirBytes) {
  const testing::TemporaryDirectory directory;
  const auto& path = directory.Path();
  for (const auto* name : {"Zed-2", "Zed-10", ".git", "PortFlash.efi"}) {
    fs::create_directory(path + "/" + name);
  }
  directory.Write("Zed-3", "a file");
  fs::create_directory_symlink("Zed-2", path + "/Zed-4");
  fs::create_symlink("nowhere", path + "/Zed-5");
  const auto boards = BoardsOf(path);
  ASSERT_TRUE(boards);
  EXPECT_EQ(*boards, (std::vector<std::string>{"Zed-10", "Zed-2", "Zed-4"}));
}

// The run reports why it cannot be looked at.
TEST(PayloadBoards, MayBeOfAKindThatIsNotKnown) {
  const testing::TemporaryDirectory directory;
  fs::create_symlink("Zed-1", directory.Path() + "/Zed-1");
  EXPECT_EQ(*BoardsOf(directory.Path()), std::vector<std::string>{"Zed-1"});
}

TEST(PayloadBoards, OfAMissingDirectoryAreAnError) {
  const auto boards = BoardsOf("/nowhere");
  ASSERT_FALSE(boards);
  EXPECT_EQ(boards.Error().error.message, "/nowhere: No such file or directory");
  EXPECT_EQ(boards.Error().status, 66);
}

}  // namespace
}  // namespace fernwick::lab
