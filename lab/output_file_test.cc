#include "lab/output_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "testing/files.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

std::size_t FilesIn(const std::string& directory) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

TEST(OutputFile, AppearsWithItsContents) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/out";
  EXPECT_EQ(WriteOutputFile(path, "new"), "");
  EXPECT_EQ(testing::ReadFile(path), "new");
  EXPECT_EQ(FilesIn(directory.Path()), 1u);
}

TEST(OutputFile, TakesThePlaceOfWhatStoodThere) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("out", "what was there before");
  EXPECT_EQ(WriteOutputFile(path, "new"), "");
  EXPECT_EQ(testing::ReadFile(path), "new");
}

TEST(OutputFile, HasThePermissionsOfAnyNewFile) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/out";
  const mode_t mask = umask(0027);
  WriteOutputFile(path, "new");
  umask(mask);
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

TEST(OutputFile, ThatCannotTakeItsPlaceLeavesNothing) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/out";
  fs::create_directory(path);
  EXPECT_EQ(WriteOutputFile(path, "new"), "Is a directory");
  EXPECT_EQ(FilesIn(directory.Path()), 1u);
}

TEST(OutputFile, InADirectoryThatIsNotThereIsAnError) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(WriteOutputFile(directory.Path() + "/none/out", "new"), "No such file or directory");
}

}  // namespace
}  // namespace fernwick::lab
