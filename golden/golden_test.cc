// Whole runs of the lab, most of them replays: the tool over recorded computers. Each case is a
// file, in the form that testing/programs/golden_case.h describes. With FERNWICK_REWRITE_GOLDEN=1
// in the environment the expectations are written instead of compared.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/programs/golden_case.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

const fs::path GoldenDirectory = FERNWICK_GOLDEN_DIRECTORY;

// The case with what its commands print now.
std::string RunAndFormat(const testing::GoldenCase& described) {
  std::string text;
  for (const auto& [head, arguments] : described.commands) {
    std::vector<std::string> command{FERNWICK_LAB_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    text += head + testing::FormatSections(testing::RunChild(command, GoldenDirectory.string()));
  }
  return text;
}

class Golden : public ::testing::TestWithParam<std::string> {};

TEST_P(Golden, RunsAsExpected) {
  const auto file = GoldenDirectory / (GetParam() + ".txt");
  const auto found = RunAndFormat(testing::ReadGoldenCase(file));
  if (std::getenv("FERNWICK_REWRITE_GOLDEN") != nullptr) {
    if (!HasFailure()) std::ofstream(file, std::ios::binary) << found;
    return;
  }
  EXPECT_EQ(testing::ReadFile(file), found) << file;
}

Names CasesOf(const std::string& directory) {
  Names names;
  for (const auto& each : testing::ReadGoldenCases(GoldenDirectory / directory)) {
    names.push_back(directory + "/" + each.name);
  }
  return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
  auto name = fs::path(info.param).filename().string();
  std::ranges::replace(name, '-', '_');
  return name;
}

const Names Replays = CasesOf("cases");
const Names Explanations = CasesOf("explanations");
const Names Shows = CasesOf("shows");

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(Replays), TestName);
INSTANTIATE_TEST_SUITE_P(Explanations, Golden, ::testing::ValuesIn(Explanations), TestName);
INSTANTIATE_TEST_SUITE_P(Shows, Golden, ::testing::ValuesIn(Shows), TestName);

// A file that is not read as a case would never be compared.
TEST(GoldenCases, AreAllFilesOfTheirDirectories) {
  std::size_t count = 0;
  for (const char* directory : {"cases", "explanations", "shows"}) {
    for (const auto& file : fs::directory_iterator(GoldenDirectory / directory)) {
      EXPECT_EQ(file.path().extension(), ".txt") << file.path();
      ++count;
    }
  }
  EXPECT_EQ(count, Replays.size() + Explanations.size() + Shows.size());
}

// Every case file is read, and is in the directory of its verb.
TEST(GoldenCases, RunTheVerbOfTheirDirectory) {
  EXPECT_GE(Replays.size(), 44U);
  EXPECT_GE(Explanations.size(), 15U);
  EXPECT_GE(Shows.size(), 4U);
  const std::pair<Names, std::string> verbs[] = {
      {Replays, "replay"}, {Explanations, "explain"}, {Shows, "show"}};
  for (const auto& [names, verb] : verbs) {
    for (const auto& name : names) {
      for (const auto& command :
           testing::ReadGoldenCase(GoldenDirectory / (name + ".txt")).commands) {
        ASSERT_FALSE(command.arguments.empty()) << name;
        EXPECT_EQ(command.arguments.front(), verb) << name;
      }
    }
  }
}

}  // namespace
}  // namespace fernwick
