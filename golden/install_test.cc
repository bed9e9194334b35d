// What is installed, and that it works where it is installed.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::RunChild;

const fs::path SourceDirectory = FERNWICK_SOURCE_DIRECTORY;
const std::string BuildDirectory = FERNWICK_BUILD_DIRECTORY;

// The files below a directory, each as it is reached from `root`.
std::set<std::string> FilesBelow(const fs::path& directory, const fs::path& root) {
  std::set<std::string> files;
  for (const auto& file : fs::recursive_directory_iterator(directory)) {
    if (!file.is_directory()) files.insert(file.path().lexically_relative(root).string());
  }
  return files;
}

class Install : public ::testing::Test {
 protected:
  Install() {
    const auto outcome =
        RunChild({"cmake", "--install", BuildDirectory, "--prefix", prefix_.Path()}, "/");
    EXPECT_EQ(outcome.status, "0") << outcome.standardError;
  }

  testing::TemporaryDirectory prefix_;
};

TEST_F(Install, InstallsTheProgramsTheirDocumentationAndNothingElse) {
  std::set<std::string> expected = {
      "bin/fernwick",
      "bin/fernwick-lab",
      "share/bash-completion/completions/fernwick-lab",
      "share/doc/fernwick/README.md",
      "share/doc/fernwick/changelog.gz",
      "share/doc/fernwick/copyright",
      "share/man/man1/fernwick-lab.1.gz",
      "share/man/man1/fernwick.1.gz",
      "share/man/man5/fernwick-config.5.gz",
      "share/man/man5/fernwick-recording.5.gz",
      "share/zsh/site-functions/_fernwick-lab",
  };
  for (const char* directory : {"docs", "examples"}) {
    for (const auto& file : FilesBelow(SourceDirectory / directory, SourceDirectory)) {
      expected.insert("share/doc/fernwick/" + file);
    }
  }
  EXPECT_EQ(FilesBelow(prefix_.Path(), prefix_.Path()), expected);
}

TEST_F(Install, InstallsExamplesThatRun) {
  const std::vector<std::string> arguments = {"survey", "-p", "examples/payload", "examples"};
  const auto run = [&](const std::string& program, const std::string& directory) {
    std::vector<std::string> command = {program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunChild(command, directory);
  };
  const auto installed =
      run(prefix_.Path() + "/bin/fernwick-lab", prefix_.Path() + "/share/doc/fernwick");
  EXPECT_EQ(installed.status, "0");
  EXPECT_EQ(installed.standardOutput,
            run(FERNWICK_LAB_PROGRAM, SourceDirectory.string()).standardOutput);
}

// The package of the build directory as it is, made in `directory`; empty when there is none.
std::string MakePackage(const testing::TemporaryDirectory& directory) {
  const auto outcome = RunChild({"env", "SOURCE_DATE_EPOCH=1700000000", "cpack", "--config",
                                 BuildDirectory + "/CPackConfig.cmake", "-B", directory.Path()},
                                "/");
  EXPECT_EQ(outcome.status, "0") << outcome.standardOutput << outcome.standardError;
  for (const auto& file : fs::directory_iterator(directory.Path())) {
    if (file.path().extension() == ".deb") return testing::ReadFile(file.path());
  }
  return "";
}

TEST(Package, OfTheSameFilesIsTheSameWheneverItIsMade) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const testing::TemporaryDirectory one;
  const testing::TemporaryDirectory other;
  const auto package = MakePackage(one);
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // times are kept by the second
  EXPECT_FALSE(package.empty());
  EXPECT_TRUE(package == MakePackage(other));
}

TEST(Package, HasTheVersionOfTheProject) {
  const auto changelog = testing::ReadFile(SourceDirectory / "packaging/changelog");
  EXPECT_EQ(changelog.substr(0, changelog.find('\n')),
            "fernwick (" FERNWICK_VERSION ") unstable; urgency=medium");
}

}  // namespace
}  // namespace fernwick
