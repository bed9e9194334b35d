#include "registry/host/host_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <string>

#include "testing/host_tree.h"
#include "testing/unprivileged.h"

namespace fernwick {
namespace {

using testing::HostTree;

using Links = HostFiles::Links;
using Names = std::vector<std::string>;

constexpr std::size_t Limit = 100;

std::optional<std::string> Read(const HostTree& tree, const std::string& path,
                                Links links = Links::Followed) {
  return HostFiles(tree.Root()).Read(path, Limit, links);
}

TEST(HostFiles, ReadsARegularFile) {
  const HostTree tree("proc/cmdline = quiet\nsys/empty :\n");
  EXPECT_EQ(Read(tree, "proc/cmdline"), "quiet\n");
  EXPECT_EQ(Read(tree, "sys/empty"), "");
}

TEST(HostFiles, OfThisComputerAreBelowTheRootDirectory) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("a/file", "text");
  EXPECT_EQ(HostFiles("/").RootError(), "");
  EXPECT_EQ(HostFiles("/").Read(path.substr(1), Limit), "text");
  EXPECT_EQ(HostFiles("/").List(directory.Path().substr(1)).directories, Names{"a"});
  EXPECT_TRUE(HostFiles("/").IsDirectory(directory.Path().substr(1)));
  EXPECT_FALSE(HostFiles("/").IsDirectory(path.substr(1)));
}

TEST(HostFiles, WithoutARootDirectoryAreAbsent) {
  const HostTree tree("sys/file = x\n");
  const HostFiles none(tree.Root() + "/none");
  EXPECT_EQ(none.RootError(), "No such file or directory");
  EXPECT_EQ(none.Read("sys/file", Limit), std::nullopt);
  EXPECT_FALSE(none.IsDirectory("sys"));
  EXPECT_EQ(none.List("sys").files, Names());
  EXPECT_EQ(HostFiles(tree.Root() + "/sys/file").RootError(), "Not a directory");
}

TEST(HostFiles, NeedOneOfTheDirectoriesThatAllOfThemAreIn) {
  const HostTree tree("both/proc/\nboth/sys/\none/proc/\nother/sys/\nnone/\nfile/sys = x\n");
  for (const char* usable : {"/both", "/one", "/other"}) {
    EXPECT_EQ(HostFiles(tree.Root() + usable).RootError(), "");
  }
  for (const char* useless : {"/none", "/file"}) {
    EXPECT_EQ(HostFiles(tree.Root() + useless).RootError(),
              "there is neither \"proc\" nor \"sys\" in it");
  }
}

TEST(HostFiles, AreAbsentAboveTheLimit) {
  const HostTree tree("");
  tree.Write("fits", std::string(100, 'x'));
  tree.Write("long", std::string(101, 'x'));
  EXPECT_EQ(Read(tree, "fits"), std::string(100, 'x'));
  EXPECT_EQ(Read(tree, "long"), std::nullopt);
}

// Files of /proc claim a size of 0: what counts is what can be read.
TEST(HostFiles, ThatUnderstateTheirSizeAreAbsentAboveTheLimit) {
  EXPECT_EQ(HostFiles("/").Read("proc/self/status", 1), std::nullopt);
}

TEST(HostFiles, OtherThanRegularOnesAreAbsentAndNeverWaitedFor) {
  const HostTree tree("fifo |\ndirectory/\ndevice -> /dev/zero\n");
  for (const char* path : {"fifo", "directory", "device", "none", "", "fifo/x", "directory/x"}) {
    EXPECT_EQ(Read(tree, path), std::nullopt) << path;
  }
  EXPECT_EQ(HostFiles("/").Read("dev/zero", Limit), std::nullopt);
}

TEST(HostFiles, AreReadThroughLinksInsideTheRoot) {
  const HostTree tree(
      "sys/devices/pci/vendor = 1\n"
      "sys/bus/relative -> ../devices/pci\n"
      "sys/bus/absolute -> /sys/devices/pci\n"
      "sys/bus/above -> ../../../../../../../../sys/devices\n"
      "sys/bus/file -> relative/vendor\n");
  for (const char* path : {"sys/bus/relative/vendor", "sys/bus/absolute/vendor",
                           "sys/bus/above/pci/vendor", "sys/bus/file"}) {
    EXPECT_EQ(Read(tree, path), "1\n") << path;
  }
  EXPECT_EQ(Read(tree, "sys/bus/relative/../pci/vendor"), "1\n");
  EXPECT_TRUE(HostFiles(tree.Root()).IsDirectory("sys/bus/absolute"));
}

TEST(HostFiles, OutsideTheRootAreNeverRead) {
  const HostTree tree(
      "inside/proc/\n"
      "secret = x\n"
      "inside/relative -> ../secret\n"
      "inside/deep -> ../../../../etc/passwd\n"
      "inside/absolute -> /etc/passwd\n");
  const HostFiles files(tree.Root() + "/inside");
  for (const char* path : {"relative", "deep", "absolute", "../secret", "/../secret"}) {
    EXPECT_EQ(files.Read(path, Limit), std::nullopt) << path;
  }
}

TEST(HostFiles, AtTheEndOfALinkCanBeIgnored) {
  const HostTree tree("sys/file = x\nsys/link -> file\nlink -> sys\n");
  EXPECT_EQ(Read(tree, "sys/link", Links::Ignored), std::nullopt);
  EXPECT_EQ(Read(tree, "sys/file", Links::Ignored), "x\n");
  EXPECT_EQ(Read(tree, "link/file", Links::Ignored), "x\n");
}

TEST(HostFiles, AreAbsentWhereLinksLoop) {
  const HostTree tree("a -> b\nb -> a\nself/self -> .\n");
  EXPECT_EQ(Read(tree, "a"), std::nullopt);
  EXPECT_FALSE(HostFiles(tree.Root()).IsDirectory("a"));
  EXPECT_EQ(HostFiles(tree.Root()).List("b").links, Names());
  std::string path = "self";
  for (int i = 0; i < 100; ++i) path += "/self";
  EXPECT_EQ(Read(tree, path), std::nullopt);
}

TEST(HostFiles, ThatMayNotBeReadAreAbsent) {
  const HostTree tree("sys/closed/file = x\nsys/secret = x\nsys/open = x\n");
  ASSERT_EQ(chmod(tree.Root().c_str(), 0755), 0);
  ASSERT_EQ(chmod((tree.Root() + "/sys/closed").c_str(), 0), 0);
  ASSERT_EQ(chmod((tree.Root() + "/sys/secret").c_str(), 0), 0);
  {
    const testing::Unprivileged unprivileged;
    EXPECT_EQ(Read(tree, "sys/secret"), std::nullopt);
    EXPECT_EQ(Read(tree, "sys/closed/file"), std::nullopt);
    EXPECT_EQ(HostFiles(tree.Root()).List("sys/closed").files, Names());
    EXPECT_TRUE(HostFiles(tree.Root()).IsDirectory("sys/closed"));
    EXPECT_EQ(Read(tree, "sys/open"), "x\n");
  }
  ASSERT_EQ(chmod((tree.Root() + "/sys/closed").c_str(), 0755), 0);
}

TEST(HostFiles, AreListedByKindInByteOrder) {
  const HostTree tree(
      "d/b = x\nd/a = x\nd/B = x\nd/\\xFF = x\nd/sub2/\nd/sub1/\nd/link -> nowhere\nd/fifo |\n");
  const auto listing = HostFiles(tree.Root()).List("d");
  EXPECT_EQ(listing.files, (Names{"B", "a", "b", "\xFF"}));
  EXPECT_EQ(listing.directories, (Names{"sub1", "sub2"}));
  EXPECT_EQ(listing.links, Names{"link"});
}

TEST(HostFiles, OfALargeDirectoryAreAllListed) {
  const HostTree tree("");
  for (int i = 0; i < 2000; ++i) tree.Write("d/a file with a longer name " + std::to_string(i), "");
  EXPECT_EQ(HostFiles(tree.Root()).List("d").files.size(), 2000u);
}

TEST(HostFiles, OfWhatIsNoDirectoryAreNotListed) {
  const HostTree tree("sys/file = x\nsys/fifo |\n");
  for (const char* path : {"sys/file", "sys/fifo", "sys/none"}) {
    EXPECT_EQ(HostFiles(tree.Root()).List(path).files, Names()) << path;
  }
}

// The open fails with the error that a race has, as often as it is tried.
TEST(HostFiles, ThatAreLeasedAreAbsent) {
  const HostTree tree("sys/leased = x\n");
  const auto signalBefore = std::signal(SIGIO, SIG_IGN);
  const int file = open((tree.Root() + "/sys/leased").c_str(), O_RDWR);
  ASSERT_GE(file, 0);
  if (fcntl(file, F_SETLEASE, F_WRLCK) == 0) {
    EXPECT_EQ(Read(tree, "sys/leased"), std::nullopt);
  }
  close(file);
  std::signal(SIGIO, signalBefore);
  EXPECT_EQ(Read(tree, "sys/leased"), "x\n");
}

// From now on the system has no openat2.
void ForbidOpenat2() {
  sock_filter instructions[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {std::size(instructions), instructions};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) std::abort();
  if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) std::abort();
}

// Its links would lead to the files of this computer.
TEST(HostFiles, OfACopyNeedASystemThatConfinesLinks) {
  const HostTree tree("sys/file = x\n");
  const auto withoutOpenat2 = [&] {
    ForbidOpenat2();
    const HostFiles copy(tree.Root());
    const auto own = HostFiles("/").Read((tree.Root() + "/sys/file").substr(1), Limit);
    std::cerr << copy.RootError() << "|" << copy.Read("sys/file", Limit).value_or("absent") << "|"
              << own.value_or("absent");
    std::exit(0);
  };
  EXPECT_EXIT(withoutOpenat2(), ::testing::ExitedWithCode(0),
              "Function not implemented\\|absent\\|x");
}

}  // namespace
}  // namespace fernwick
