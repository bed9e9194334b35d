#include "registry/host/boot_options.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/host_tree.h"

namespace fernwick {
namespace {

using testing::HostTree;

std::optional<std::string> BootArguments(const HostTree& tree) {
  return ReadBootArguments(HostFiles(tree.Root()));
}

TEST(ReadBootArguments, ReturnsTheLineWithoutItsEnd) {
  EXPECT_EQ(BootArguments(HostTree("proc/cmdline = quiet  a=b \n")), "quiet  a=b ");
  EXPECT_EQ(BootArguments(HostTree("proc/cmdline : a\\x09b\n")), "a\tb");
  EXPECT_EQ(BootArguments(HostTree("proc/cmdline : a\\n\\n\n")), "a\n");
  EXPECT_EQ(BootArguments(HostTree("proc/cmdline :\n")), "");
}

TEST(ReadBootArguments, OfWhatIsNoTextIsAbsent) {
  for (const char* bytes :
       {"\\xFF", "a\\x00b", "\\x1B[31m", "\\xEF\\xBF\\xBF", "\\xED\\xA0\\x80"}) {
    EXPECT_EQ(BootArguments(HostTree(std::string("proc/cmdline = ") + bytes)), std::nullopt);
  }
}

TEST(ReadBootArguments, OfAFileThatCannotBeReadIsAbsent) {
  EXPECT_EQ(BootArguments(HostTree("")), std::nullopt);
  EXPECT_EQ(BootArguments(HostTree("proc/cmdline |\n")), std::nullopt);
  const HostTree tree("");
  tree.Write("proc/cmdline", std::string(65536, 'a'));
  EXPECT_EQ(BootArguments(tree), std::string(65536, 'a'));
  tree.Write("proc/cmdline", std::string(65537, 'a'));
  EXPECT_EQ(BootArguments(tree), std::nullopt);
}

constexpr char Variables[] = R"(
sys/firmware/efi/efivars/
  Boot-Order-8be4df61-93ca-11d2-aa0d-00e098032b8c : \x07\x00\x00\x00\x31
  b-22222222-2222-2222-2222-222222222222 : \x07\x00\x00\x00second
  b-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00first
  b+-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00before the others in byte order
  bb-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00x
  short-11111111-1111-1111-1111-111111111111 : \x07\x00\x00
  empty-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00
  any-123456789012345678901234567890123456 : \x07\x00\x00\x00x
  -11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00x
  11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00x
  none-11111111-1111-1111-1111-11111111111 : \x07\x00\x00\x00x
  \xFF-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00x
  link-11111111-1111-1111-1111-111111111111 -> b-11111111-1111-1111-1111-111111111111
  directory-11111111-1111-1111-1111-111111111111/
  fifo-11111111-1111-1111-1111-111111111111 |
)";

TEST(EfiVariableOf, NamesThoseWithAGuidAfterTheName) {
  const std::string guid = "-11111111-1111-1111-1111-111111111111";
  EXPECT_EQ(EfiVariableOf("a" + guid), "a");
  EXPECT_EQ(EfiVariableOf("Boot-Order" + guid), "Boot-Order");
  EXPECT_EQ(EfiVariableOf("any-123456789012345678901234567890123456"), "any");
  EXPECT_EQ(EfiVariableOf(guid), "");
  EXPECT_EQ(EfiVariableOf(guid.substr(1)), "");
  EXPECT_EQ(EfiVariableOf("none" + guid.substr(0, 36)), "");
  EXPECT_EQ(EfiVariableOf("none_" + guid.substr(1)), "");
}

TEST(FindEfiFile, FindsTheFirstRegularFileOfAVariable) {
  const HostTree tree(Variables);
  const auto efiFiles = ListEfiFiles(HostFiles(tree.Root()));
  const auto find = [&](std::string_view name) {
    const auto* file = FindEfiFile(efiFiles, name);
    return file == nullptr ? "none" : *file;
  };
  EXPECT_EQ(find("b"), "b-11111111-1111-1111-1111-111111111111");
  EXPECT_EQ(find("Boot-Order"), "Boot-Order-8be4df61-93ca-11d2-aa0d-00e098032b8c");
  EXPECT_EQ(find("bb"), "bb-11111111-1111-1111-1111-111111111111");
  for (const char* name : {"", "Boot", "c", "zzz", "link", "directory", "fifo", "none", "B"}) {
    EXPECT_EQ(find(name), "none") << name;
  }
  EXPECT_EQ(ListEfiFiles(HostFiles("/none")), std::vector<std::string>());
}

TEST(ReadEfiVariable, ReturnsTheBytesAfterTheAttributes) {
  const HostTree tree(Variables);
  const HostFiles files(tree.Root());
  const auto read = [&](const std::string& name) {
    return ReadEfiVariable(files, name + "-11111111-1111-1111-1111-111111111111");
  };
  EXPECT_EQ(read("b"), "first");
  EXPECT_EQ(read("empty"), "");
  EXPECT_EQ(read("short"), std::nullopt);
  EXPECT_EQ(read("fifo"), std::nullopt);
  EXPECT_EQ(read("gone"), std::nullopt);
}

}  // namespace
}  // namespace fernwick
