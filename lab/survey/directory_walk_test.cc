#include "lab/survey/directory_walk.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

// The paths that the walk returns, each without that of the directory, an error after " ".
std::vector<std::string> WalkOver(const std::string& directory) {
  std::vector<std::string> found;
  DirectoryWalk walk(directory);
  while (const auto selected = walk.Next()) {
    const auto error = selected->error.empty() ? "" : " " + selected->error;
    found.push_back(selected->path.substr(directory.size()) + error);
  }
  return found;
}

using Paths = std::vector<std::string>;

TEST(DirectoryWalk, FindsRecordingsAtEveryDepthByName) {
  const testing::TemporaryDirectory directory;
  for (const char* path : {"b.registry.plist", "a/z.registry.plist", "a.registry.plist",
                           "a/deep/er/c.registry.plist", "a/notes.txt", ".registry.plist",
                           "a-b/x.registry.plist", "\xFF.registry.plist", "B.registry.plist"}) {
    directory.Write(path, "");
  }
  EXPECT_EQ(WalkOver(directory.Path()),
            (Paths{"/.registry.plist", "/B.registry.plist", "/a-b/x.registry.plist",
                   "/a.registry.plist", "/a/deep/er/c.registry.plist", "/a/z.registry.plist",
                   "/b.registry.plist", "/\xFF.registry.plist"}));
}

TEST(DirectoryWalk, OverAnEmptyDirectoryFindsNothing) {
  const testing::TemporaryDirectory directory;
  fs::create_directories(directory.Path() + "/a/b");
  EXPECT_EQ(WalkOver(directory.Path()), Paths{});
}

TEST(DirectoryWalk, FollowsNoLinkToADirectory) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.Write("a/one.registry.plist", "");
  fs::create_directory_symlink(directory.Path(), directory.Path() + "/a/loop");
  fs::create_symlink(file, directory.Path() + "/link.registry.plist");
  EXPECT_EQ(WalkOver(directory.Path()), (Paths{"/a/one.registry.plist", "/link.registry.plist"}));
}

TEST(DirectoryWalk, GoesIntoADirectoryThatIsNamedLikeARecording) {
  const testing::TemporaryDirectory directory;
  directory.Write("a.registry.plist/b.registry.plist", "");
  EXPECT_EQ(WalkOver(directory.Path()), Paths{"/a.registry.plist/b.registry.plist"});
}

TEST(DirectoryWalk, NamesTheDirectoryThatCannotBeRead) {
  EXPECT_EQ(WalkOver("/no-such-directory"), Paths{" No such file or directory"});
}

TEST(DirectoryWalk, DoublesNoSlash) {
  const testing::TemporaryDirectory directory;
  directory.Write("a.registry.plist", "");
  DirectoryWalk walk(directory.Path() + "//");
  EXPECT_EQ(walk.Next(), (Selected{directory.Path() + "/a.registry.plist"}));
}

}  // namespace
}  // namespace fernwick::lab
