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

TEST(BoardNamed, IsTheDirectoryThatIsOpened) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/Fernwick/";
  fs::create_directories(path + "Zed-1/inner");
  fs::create_directories(directory.Path() + "/elsewhere/deep");
  fs::create_directory_symlink("../elsewhere/deep", path + "Zed-2");
  const auto named = [&](const std::string& identifier) { return BoardNamed(identifier, path); };
  for (const auto* identifier :
       {"Zed-1", "Zed-1/", "Zed-1//", "/Zed-1", "//Zed-1", "./Zed-1", "Zed-1/.", "Zed-1/inner/..",
        "../Fernwick/Zed-1", "Zed-2/../../Fernwick/Zed-1"}) {
    EXPECT_EQ(named(identifier), "Zed-1") << identifier;
  }
  for (const auto* identifier : {"", ".", "/", "/.", "./", "Zed-1/..", "../Fernwick"}) {
    EXPECT_EQ(named(identifier), ".") << identifier;
  }
  EXPECT_EQ(named("Zed-2/"), "Zed-2");
  EXPECT_EQ(named("Zed-1//inner"), "Zed-1/inner");
  EXPECT_EQ(named(".."), "..");
  EXPECT_EQ(named("Zed-2/.."), "../elsewhere");
  EXPECT_EQ(named("..."), "...");
}

}  // namespace
}  // namespace fernwick::lab
