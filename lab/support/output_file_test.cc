#include "lab/support/output_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include "testing/files.h"
#include "testing/temporary_directory.h"

namespace {

int signalBeforeSync = 0;
std::string appearingFile;  // created by another process meanwhile; empty: none is

}  // namespace

// Replaces the C library's: a signal or another file comes when a file is written but not renamed.
extern "C" int fsync(int file) {
  if (signalBeforeSync != 0) std::raise(signalBeforeSync);
  if (!appearingFile.empty()) std::ofstream(appearingFile).flush();
  return static_cast<int>(syscall(SYS_fsync, file));
}

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

TEST(OutputFile, ReplacesAFileThatExists) {
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

TEST(OutputFile, KeepsThePermissionsOfTheFileThatItReplaces) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("out", "what was there before");
  for (const auto mode : {fs::perms(0600), fs::perms(0664)}) {
    fs::permissions(path, mode);
    EXPECT_EQ(WriteOutputFile(path, "new"), "");
    EXPECT_EQ(fs::status(path).permissions(), mode);
  }
}

TEST(OutputFile, BeyondTheLimitOfFileSizesIsAnErrorAndLeavesNothing) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/out";
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit limit = {1000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  const auto parts = [](const TextSink& sink) {
    for (int i = 0; i < 3; ++i) sink(std::string(600, 'x'));
  };
  const auto error = WriteOutputFile(path, parts, IfExists::Refuse);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(error, "File too large");
  EXPECT_EQ(FilesIn(directory.Path()), 0u);
}

TEST(OutputFile, ThatCannotBeRenamedLeavesNothing) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/out";
  fs::create_directory(path);
  EXPECT_EQ(WriteOutputFile(path, "new"), "Is a directory");
  EXPECT_EQ(FilesIn(directory.Path()), 1u);
}

TEST(OutputFile, IsWholeWhenASignalEndsTheProcessMeanwhile) {
  for (const int number : {SIGINT, SIGHUP, SIGTERM}) {
    const testing::TemporaryDirectory directory;
    const auto path = directory.Path() + "/out";
    const pid_t child = fork();
    if (child == 0) {
      std::signal(number, SIG_DFL);  // a parent process may ignore it
      signalBeforeSync = number;
      WriteOutputFile(path, "new");
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), number);
    EXPECT_EQ(FilesIn(directory.Path()), 1u);
    EXPECT_EQ(testing::ReadFile(path), "new");
  }
}

TEST(OutputFile, ReachedByALinkReplacesTheFileAndLeavesTheLink) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("file", "what was there before");
  const auto link = directory.Path() + "/link";
  fs::create_symlink("file", link);
  EXPECT_EQ(WriteOutputFile(link, "new"), "");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(testing::ReadFile(path), "new");
  EXPECT_EQ(FilesIn(directory.Path()), 2u);
}

TEST(OutputFile, ReachedByADanglingLinkIsAnError) {
  const testing::TemporaryDirectory directory;
  const auto dangling = directory.Path() + "/dangling";
  fs::create_symlink("none", dangling);
  EXPECT_EQ(WriteOutputFile(dangling, "new"), "a link to a file that does not exist");
  EXPECT_EQ(fs::read_symlink(dangling), "none");
  EXPECT_EQ(FilesIn(directory.Path()), 1u);
  const auto loop = directory.Path() + "/loop";
  fs::create_symlink("loop", loop);
  EXPECT_EQ(WriteOutputFile(loop, "new"), "Too many levels of symbolic links");
  EXPECT_TRUE(fs::is_symlink(loop));
}

TEST(OutputFile, LeavesAlonePipesAndDevices) {
  const testing::TemporaryDirectory directory;
  const auto pipe = directory.Path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(WriteOutputFile(pipe, "new"), "not a regular file");
  EXPECT_TRUE(fs::is_fifo(pipe));
  const auto device = directory.Path() + "/device";
  fs::create_symlink("/dev/null", device);
  EXPECT_EQ(WriteOutputFile(device, "new"), "not a regular file");
  EXPECT_EQ(fs::read_symlink(device), "/dev/null");
  EXPECT_EQ(FilesIn(directory.Path()), 2u);
}

TEST(OutputFile, RefusesToReplaceWhatExists) {
  const testing::TemporaryDirectory directory;
  const auto refuse = [](const std::string& path) {
    const auto error = ExistingOutputError(path);
    EXPECT_EQ(WriteOutputFile(path, "new", IfExists::Refuse), error);
    return error;
  };
  const std::string exists = "there is a file of that name; --force replaces it";
  const auto path = directory.Path() + "/out";
  EXPECT_EQ(refuse(path), "");
  EXPECT_EQ(testing::ReadFile(path), "new");
  EXPECT_EQ(refuse(directory.Write("old", "old")), exists);
  EXPECT_EQ(testing::ReadFile(directory.Path() + "/old"), "old");
  fs::create_symlink("none", directory.Path() + "/dangling");
  EXPECT_EQ(refuse(directory.Path() + "/dangling"), exists);
  EXPECT_EQ(refuse(directory.Path()), "Is a directory");
  EXPECT_EQ(refuse("/dev/null"), "not a regular file");
  EXPECT_EQ(FilesIn(directory.Path()), 3u);
}

TEST(OutputFile, RefusesToReplaceAFileThatAppearsMeanwhile) {
  const testing::TemporaryDirectory directory;
  appearingFile = directory.Path() + "/out";
  EXPECT_EQ(WriteOutputFile(appearingFile, "new", IfExists::Refuse),
            "there is a file of that name; --force replaces it");
  EXPECT_EQ(testing::ReadFile(appearingFile), "");
  EXPECT_EQ(FilesIn(directory.Path()), 1u);
  appearingFile.clear();
}

TEST(OutputFile, InADirectoryThatIsNotThereIsAnError) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(WriteOutputFile(directory.Path() + "/none/out", "new"), "No such file or directory");
}

}  // namespace
}  // namespace fernwick::lab
