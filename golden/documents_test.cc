// The commands in the documents are run, and must print what the documents show. A document shows a
// command in a block fenced as "console": lines that begin with "$ " are run by the shell at the
// top of the source tree, with the built programs on the PATH; what follows each is what it prints,
// its standard error included, up to the next command. A last line "[status N]" is the exit status
// when it is not 0.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/child_process.h"
#include "testing/files.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

const fs::path SourceDirectory = FERNWICK_SOURCE_DIRECTORY;

struct ShownCommand {
  std::string place;  // document and line
  std::string command;
  std::string output;
};

std::vector<ShownCommand> CommandsOf(const fs::path& document) {
  std::vector<ShownCommand> commands;
  std::ifstream lines(document);
  bool inBlock = false;
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (line.starts_with("```")) {
      inBlock = line == "```console";
    } else if (inBlock && line.starts_with("$ ")) {
      const auto place = document.filename().string() + ":" + std::to_string(number);
      commands.push_back({place, line.substr(2), ""});
    } else if (inBlock && !commands.empty()) {
      commands.back().output += line + "\n";
    }
  }
  return commands;
}

std::vector<ShownCommand> AllCommands() {
  auto commands = CommandsOf(SourceDirectory / "README.md");
  for (const auto& file : fs::directory_iterator(SourceDirectory / "docs")) {
    for (auto& command : CommandsOf(file.path())) commands.push_back(std::move(command));
  }
  return commands;
}

TEST(Documents, ShowWhatTheirCommandsPrint) {
  const auto commands = AllCommands();
  ASSERT_FALSE(commands.empty());
  const std::string path = std::string("PATH=\"" FERNWICK_BUILD_DIRECTORY ":$PATH\"; exec 2>&1; ");
  for (const auto& [place, command, output] : commands) {
    const auto outcome =
        testing::RunChild({"/bin/sh", "-c", path + command}, SourceDirectory.string());
    const auto status = outcome.status == "0" ? "" : "[status " + outcome.status + "]\n";
    EXPECT_EQ(outcome.standardOutput + status, output) << place;
  }
}

// What a newcomer sees first.
TEST(Dev, DemoShowsAPlanAndTheOtherComputers) {
  const auto outcome = testing::RunChild(
      {"/usr/bin/env", "FERNWICK_BUILD=" FERNWICK_BUILD_DIRECTORY, "./dev", "demo"},
      SourceDirectory.string());
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardOutput, testing::ReadFile(SourceDirectory / "golden/demo.stdout"));
}

TEST(Dev, WithoutACommandListsThem) {
  const auto outcome = testing::RunChild({"./dev"}, SourceDirectory.string());
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardOutput,
            "usage: ./dev COMMAND\n"
            "\n"
            "  demo    build, then plan an update for a recorded computer of examples/\n"
            "  test    build, then run every test; further arguments go to ctest\n"
            "  build   build alone\n"
            "\n"
            "Each command first installs whatever Debian package is missing (with sudo when not "
            "root).\n");
}

TEST(Dev, RefusesAnUnknownCommand) {
  EXPECT_EQ(testing::RunChild({"./dev", "tset"}, SourceDirectory.string()).status, "64");
}

}  // namespace
}  // namespace fernwick
