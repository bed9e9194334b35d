#include "testing/host_tree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "testing/files.h"

namespace fernwick::testing {
namespace {

namespace fs = std::filesystem;

std::string Contents(const std::string& description, const std::string& path) {
  const HostTree tree(description);
  return ReadFile(tree.Root() + "/" + path);
}

TEST(HostTree, HasFilesWithALineFeedOrExactBytes) {
  EXPECT_EQ(Contents("a/b = text \n", "a/b"), "text \n");
  EXPECT_EQ(Contents("a/b =\n", "a/b"), "\n");
  EXPECT_EQ(Contents("a/b : \\x41\\x00\\n\\\\x \\q\n", "a/b"), std::string("A\0\n\\x \\q", 8));
  EXPECT_EQ(Contents("a/b : x = y -> z/\n", "a/b"), "x = y -> z/");
  EXPECT_EQ(Contents("a\\x20= = x\n", "a ="), "x\n");
}

TEST(HostTree, HasEntriesBelowTheDirectoriesAboveThem) {
  const std::string tree =
      "# a comment\n"
      "a/b/\n"
      "  c = 1\n"
      "\n"
      "  d/\n"
      "    e = 2\n"
      "  f = 3\n"
      "g = 4\n";
  EXPECT_EQ(Contents(tree, "a/b/c") + Contents(tree, "a/b/d/e") + Contents(tree, "a/b/f") +
                Contents(tree, "g"),
            "1\n2\n3\n4\n");
}

TEST(HostTree, HasLinksAndFifos) {
  const HostTree tree("a/link -> ../b c\na/fifo |\nempty/\n");
  EXPECT_EQ(fs::read_symlink(tree.Root() + "/a/link"), "../b c");
  EXPECT_TRUE(fs::is_fifo(tree.Root() + "/a/fifo"));
  EXPECT_TRUE(fs::is_empty(tree.Root() + "/empty"));
  EXPECT_TRUE(fs::is_directory(tree.Root() + "/sys"));
}

TEST(UnfoldTree, ReturnsTheFirstLineThatCannotBeCreated) {
  const TemporaryDirectory directory;
  EXPECT_EQ(UnfoldTree("a = 1\n  b = 2\na = 3\nc = 4\n", directory.Path()), "  b = 2");
  EXPECT_EQ(ReadFile(directory.Path() + "/a"), "1\n");
  EXPECT_EQ(ReadFile(directory.Path() + "/c"), "4\n");
}

// Inputs of a fuzz target are unfolded, which must not write anywhere else.
TEST(UnfoldTree, CreatesNothingOutsideTheDirectory) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.Path() + "/inside");
  fs::create_directory(directory.Path() + "/outside");
  const auto inside = directory.Path() + "/inside";
  for (const std::string line : {"../outside/x = 1", "./x = 1", "a/../../outside/x = 1", "/x = 1",
                                 "..\\x2foutside\\x2fx = 1", "..\\x00/outside/x = 1"}) {
    EXPECT_EQ(UnfoldTree(line + "\n", inside), line);
  }
  EXPECT_EQ(UnfoldTree("link -> ../outside\n", inside), "");
  EXPECT_EQ(UnfoldTree("link/x = 1\n", inside), "link/x = 1");
  EXPECT_EQ(UnfoldTree("file -> ../outside/x\nfile = 1\n", inside), "file = 1");
  EXPECT_TRUE(fs::is_empty(directory.Path() + "/outside"));
}

}  // namespace
}  // namespace fernwick::testing
