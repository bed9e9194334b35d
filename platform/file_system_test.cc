#include "platform/file_system.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::TemporaryDirectory;
using testing::Unprivileged;

struct JoiningRow {
  std::string path;
  std::string component;
  std::string joined;
};

TEST(AppendPathComponent, PutsExactlyOneSlashBetween) {
  const JoiningRow rows[] = {
      {"/P", "Fernwick", "/P/Fernwick"},
      {"/P/", "Fernwick", "/P/Fernwick"},
      {"/P///", "Fernwick", "/P/Fernwick"},
      {"/P", "/Fernwick", "/P/Fernwick"},
      {"/P", "///Fernwick", "/P/Fernwick"},
      {"/P//", "//Fernwick", "/P/Fernwick"},
      {"P", "a", "P/a"},
      {"/", "a", "/a"},
      {"//", "a", "/a"},
      {"/", "/a", "/a"},
      {"", "a", "/a"},
      {"", "/a", "/a"},
      // An empty component, and one that is nothing but slashes.
      {"/P", "", "/P"},
      {"/P/", "", "/P"},
      {"/P///", "", "/P"},
      {"/", "", ""},
      {"", "", ""},
      {"/P", "/", "/P/"},
      {"/P/", "//", "/P/"},
      {"", "/", "/"},
      // A "/" elsewhere stays.
      {"//P//Q", "a", "//P//Q/a"},
      {"/P", "a//b", "/P/a//b"},
      {"/P", "a/", "/P/a/"},
      {"/P/", "a//", "/P/a//"},
      {"/P", "..", "/P/.."},
      {"/P", ".", "/P/."},
      {"/P/.", "a", "/P/./a"},
      {"/P ", " a", "/P / a"},
      {"/P/\u00E9", "\u65E5", "/P/\u00E9/\u65E5"},
  };
  for (const auto& [path, component, joined] : rows) {
    EXPECT_EQ(AppendPathComponent(path, component), joined) << path << " and " << component;
  }
}

TEST(PathExists, ForFilesOfEveryKind) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("directory/file", "");
  const std::string fifo = directory.Path() + "/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_TRUE(PathExists(file));
  EXPECT_TRUE(PathExists(fifo));
  EXPECT_TRUE(PathExists(directory.Path() + "/directory"));
  EXPECT_TRUE(PathExists(directory.Path() + "/directory/"));
  EXPECT_TRUE(PathExists(directory.Path() + "//directory/../directory/./file"));
}

TEST(PathExists, NotForWhatIsMissing) {
  const TemporaryDirectory directory;
  EXPECT_FALSE(PathExists(directory.Path() + "/missing"));
  EXPECT_FALSE(PathExists(directory.Path() + "/missing/file"));
  EXPECT_FALSE(PathExists(""));
}

TEST(PathExists, FollowsLinks) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("directory/file", "");
  const std::string link = directory.Path() + "/link";
  fs::create_symlink(file, link);
  fs::create_symlink(link, link + "2");
  fs::create_directory_symlink(directory.Path() + "/directory", directory.Path() + "/other");
  EXPECT_TRUE(PathExists(link));
  EXPECT_TRUE(PathExists(link + "2"));
  EXPECT_TRUE(PathExists(directory.Path() + "/other/file"));
}

TEST(PathExists, NotForADanglingLink) {
  const TemporaryDirectory directory;
  const std::string link = directory.Path() + "/link";
  fs::create_symlink("missing", link);
  EXPECT_FALSE(PathExists(link));
}

TEST(PathExists, NotForALinkToItself) {
  const TemporaryDirectory directory;
  const std::string link = directory.Path() + "/link";
  fs::create_symlink("link", link);
  EXPECT_FALSE(PathExists(link));
}

TEST(PathExists, NotThroughAFile) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("file", "");
  EXPECT_FALSE(PathExists(file + "/"));
  EXPECT_FALSE(PathExists(file + "/other"));
}

TEST(PathExists, NotForAnOverLongPath) {
  const TemporaryDirectory directory;
  EXPECT_FALSE(PathExists(directory.Path() + "/" + std::string(256, 'a')));
  std::string path = directory.Path();
  for (int i = 0; i < 3000; ++i) path += "/.";
  EXPECT_FALSE(PathExists(path));
}

TEST(PathError, SaysWhyNothingIsFound) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("locked/file", "");
  EXPECT_EQ(PathError(file), 0);
  EXPECT_EQ(PathError(file + "x"), ENOENT);
  EXPECT_EQ(PathError(file + "/x"), ENOTDIR);
  fs::permissions(directory.Path(), fs::perms(0755));
  fs::permissions(directory.Path() + "/locked", fs::perms::none);
  {
    const Unprivileged unprivileged;
    EXPECT_EQ(PathError(file), EACCES);
  }
  fs::permissions(directory.Path() + "/locked", fs::perms::owner_all);
}

TEST(IsAbsence, OnlyOfErrorsThatSayThatNothingIsThere) {
  for (const int error : {ENOENT, ENOTDIR, ENAMETOOLONG, ELOOP}) EXPECT_TRUE(IsAbsence(error));
  for (const int error : {0, EACCES, ENOMEM, EMFILE, EIO}) EXPECT_FALSE(IsAbsence(error));
}

/// Expects that the path cannot be read, with that error.
void ExpectUnreadable(const std::string& path, const std::string& message) {
  EXPECT_EQ(ReadWholeFile(path), Result<std::string>(Error{message}));
}

/// The same of an error of the operating system, by its errno.
void ExpectUnreadable(const std::string& path, int error) {
  EXPECT_EQ(ReadWholeFile(path),
            Result<std::string>(Error{.message = std::strerror(error), .systemError = error}));
}

/// Expects that the path can be read and has these bytes.
void ExpectBytes(const std::string& path, const std::string& bytes) {
  EXPECT_EQ(ReadWholeFile(path), Result<std::string>(bytes));
}

TEST(ReadWholeFile, ReturnsTheBytesAsTheyAre) {
  const TemporaryDirectory directory;
  const std::string bytes("a\0b\r\n\xFF\x1A\0", 8);
  ExpectBytes(directory.Write("file", bytes), bytes);
}

TEST(ReadWholeFile, OfAnEmptyFileReturnsNoBytes) {
  const TemporaryDirectory directory;
  ExpectBytes(directory.Write("file", ""), "");
}

TEST(ReadWholeFile, OfSizesAroundThoseOfABuffer) {
  const TemporaryDirectory directory;
  for (const std::size_t size : {1u, 4095u, 4096u, 4097u, 65536u, 1000003u}) {
    std::string bytes(size, 'x');
    bytes.back() = 'y';
    ExpectBytes(directory.Write("file", bytes), bytes);
  }
}

TEST(ReadWholeFile, FollowsLinks) {
  const TemporaryDirectory directory;
  directory.Write("file", "text");
  const std::string link = directory.Path() + "/link";
  fs::create_symlink("file", link);
  ExpectBytes(link, "text");
}

TEST(ReadWholeFile, OfAFileThatClaimsToBeEmptyReturnsAllOfIt) {
  const std::string path = "/proc/sys/kernel/ostype";
  struct stat status;
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  ASSERT_EQ(status.st_size, 0);
  ExpectBytes(path, "Linux\n");
}

TEST(ReadWholeFile, ReportsAMissingFile) {
  const TemporaryDirectory directory;
  ExpectUnreadable(directory.Path() + "/missing", ENOENT);
  ExpectUnreadable("", ENOENT);
}

TEST(ReadWholeFile, ReportsADanglingLinkAsMissing) {
  const TemporaryDirectory directory;
  const std::string link = directory.Path() + "/link";
  fs::create_symlink("missing", link);
  ExpectUnreadable(link, ENOENT);
}

TEST(ReadWholeFile, ReportsALinkToItself) {
  const TemporaryDirectory directory;
  const std::string link = directory.Path() + "/link";
  fs::create_symlink("link", link);
  ExpectUnreadable(link, ELOOP);
}

TEST(ReadWholeFile, ReportsAPathThroughAFile) {
  const TemporaryDirectory directory;
  ExpectUnreadable(directory.Write("file", "") + "/other", ENOTDIR);
}

TEST(ReadWholeFile, ReportsAnOverLongPath) {
  const TemporaryDirectory directory;
  ExpectUnreadable(directory.Path() + "/" + std::string(256, 'a'), ENAMETOOLONG);
}

TEST(ReadWholeFile, ReportsADirectory) {
  const TemporaryDirectory directory;
  ExpectUnreadable(directory.Path(), std::strerror(EISDIR));
}

TEST(ReadWholeFile, ReportsAFileWithoutPermission) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("file", "text");
  fs::permissions(file, fs::perms::none);
  const Unprivileged unprivileged;
  ExpectUnreadable(file, EACCES);
}

TEST(ReadWholeFile, OfAFifoWithoutWriterDoesNotWait) {
  const TemporaryDirectory directory;
  const std::string fifo = directory.Path() + "/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  ExpectUnreadable(fifo, "not a regular file");
}

TEST(ReadWholeFile, ReportsADeviceAsNotAFile) {
  ExpectUnreadable("/dev/null", "not a regular file");
  ExpectUnreadable("/dev/zero", "not a regular file");
}

TEST(ReadWholeFile, ReportsASocketAsOneThatCannotBeOpened) {
  const TemporaryDirectory directory;
  const std::string path = directory.Path() + "/socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof(address.sun_path));
  path.copy(address.sun_path, path.size());
  const int socketNumber = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(socketNumber, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
  ExpectUnreadable(path, ENXIO);
  close(socketNumber);
}

// Not less either: a file just below it would need a GiB of memory to test.
TEST(ReadWholeFile, HasAMaximumOfOneGibibyte) {
  EXPECT_EQ(MaxFileSize, 1'073'741'824u);
}

TEST(ReadWholeFile, RefusesAFileBeyondTheMaximum) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("sparse", "");
  fs::resize_file(path, MaxFileSize + 1);
  ExpectUnreadable(path, "the file is larger than 1 GiB");
}

TEST(ReadWholeFile, RefusesAFileWhoseLow32BitsOfSizeAreSmall) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("sparse", "");
  fs::resize_file(path, 4 * MaxFileSize + 1);
  ExpectUnreadable(path, "the file is larger than 1 GiB");
}

TEST(ReadWholeFile, RefusesAFileBeyondAMaximumOfItsCaller) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("file", std::string(1001, 'x'));
  EXPECT_EQ(ReadWholeFile(path, 1001), Result<std::string>(std::string(1001, 'x')));
  const auto message = [&](std::size_t maxSize) {
    return ReadWholeFile(path, maxSize).Error().message;
  };
  EXPECT_EQ(message(1000), "the file is larger than 1000 bytes");
  fs::resize_file(path, std::size_t{65} << 20);
  EXPECT_EQ(message(std::size_t{64} << 20), "the file is larger than 64 MiB");
}

TEST(ReadWholeFile, RefusesAFileThatGrowsBeyondTheMaximum) {
  EXPECT_EQ(ReadWholeFile("/proc/sys/kernel/ostype", 6), Result<std::string>("Linux\n"));
  EXPECT_EQ(ReadWholeFile("/proc/sys/kernel/ostype", 3).Error().message,
            "the file is larger than 3 bytes");
}

TEST(ReadWholeFile, LeavesNoDescriptorOpen) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("file", "text");
  const auto lowestFree = [] {
    const int number = dup(STDERR_FILENO);
    close(number);
    return number;
  };
  const int before = lowestFree();
  ExpectBytes(file, "text");
  ExpectUnreadable(directory.Path(), std::strerror(EISDIR));
  ExpectUnreadable("/dev/null", "not a regular file");
  EXPECT_EQ(lowestFree(), before);
}

}  // namespace
}  // namespace fernwick
