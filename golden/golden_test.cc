// Whole runs of the tool over recorded computers. Each case is a file in golden/cases; what the run
// must print and how it must end stand beside it. With FERNWICK_REWRITE_GOLDEN=1 in the environment
// the expectations are written instead of compared.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/golden_case.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

const fs::path GoldenDirectory = FERNWICK_GOLDEN_DIRECTORY;

std::vector<std::string> CommandOf(const testing::GoldenCase& described) {
  std::vector<std::string> command{FERNWICK_LAB_PROGRAM, "replay", described.recording};
  for (const auto& argument : described.ToolArguments()) command.push_back(argument);
  return command;
}

class Golden : public ::testing::TestWithParam<std::string> {
 protected:
  static fs::path Beside(std::string_view ending) {
    return GoldenDirectory / "cases" / (GetParam() + std::string(ending));
  }

  static void CompareOrRewrite(std::string_view ending, const std::string& found) {
    if (std::getenv("FERNWICK_REWRITE_GOLDEN") != nullptr) {
      std::ofstream(Beside(ending), std::ios::binary) << found;
      return;
    }
    ASSERT_TRUE(fs::exists(Beside(ending))) << Beside(ending);
    EXPECT_EQ(testing::ReadFile(Beside(ending)), found) << Beside(ending);
  }
};

TEST_P(Golden, RunsAsExpected) {
  const auto outcome = testing::RunChild(CommandOf(testing::ReadGoldenCase(Beside(".case"))),
                                         GoldenDirectory.string());
  CompareOrRewrite(".stdout", outcome.standardOutput);
  CompareOrRewrite(".stderr", outcome.standardError);
  CompareOrRewrite(".status", outcome.status + "\n");
}

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  for (const auto& each : testing::ReadGoldenCases(GoldenDirectory / "cases")) {
    names.push_back(each.name);
  }
  return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::ranges::replace(name, '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(CaseNames()), TestName);

// An expectation whose case is gone would be compared with nothing.
TEST(GoldenCases, HaveNoLeftOverExpectations) {
  for (const auto& file : fs::directory_iterator(GoldenDirectory / "cases")) {
    auto caseFile = file.path();
    EXPECT_TRUE(fs::exists(caseFile.replace_extension(".case"))) << file.path();
  }
}

}  // namespace
}  // namespace fernwick
