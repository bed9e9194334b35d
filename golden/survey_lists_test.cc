// The lists that the verb `survey` reads from standard input, and its exit statuses.

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;

// Surveys the paths that a command prints; runs in golden/.
ChildOutcome SurveyListed(const std::string& command) {
  return testing::RunChild(
      {"/bin/sh", "-c",
       command + " | \"$0\" survey -p ../examples/payload --format csv - | cut -d, -f1-4",
       FERNWICK_LAB_PROGRAM},
      FERNWICK_GOLDEN_DIRECTORY);
}

std::string WithoutReturns(std::string text) {
  std::erase(text, '\r');
  return text;
}

constexpr char TwoRows[] =
    "file,outcome,status,reason\n"
    "recordings/bypass-nvram.registry.plist,bypassed,0,\n"
    "recordings/typical.registry.plist,no plan,13,\n";

TEST(SurveyList, MayHaveCrlfLineEnds) {
  const auto outcome = SurveyListed(
      "printf '%s\\r\\n' recordings/bypass-nvram.registry.plist '' "
      "recordings/typical.registry.plist");
  EXPECT_EQ(WithoutReturns(outcome.standardOutput), TwoRows);
}

TEST(SurveyList, MayBeSeparatedByNulCharacters) {
  const auto outcome = SurveyListed(
      "printf '%s\\0' recordings/bypass-nvram.registry.plist "
      "recordings/typical.registry.plist");
  EXPECT_EQ(WithoutReturns(outcome.standardOutput), TwoRows);
}

TEST(SurveyList, OfNulCharactersAloneIsRefusedAtOnce) {
  const auto outcome = SurveyListed("cat /dev/zero");
  EXPECT_EQ(WithoutReturns(outcome.standardOutput),
            "file,outcome,status,reason\n"
            "'-,refused,66,an empty path in a list that NUL characters separate\n");
}

TEST(SurveyList, WithAPathThatIsTooLongEndsThere) {
  const auto outcome = SurveyListed("yes x | tr -d '\\n'");
  EXPECT_EQ(WithoutReturns(outcome.standardOutput),
            "file,outcome,status,reason\n'-,refused,66,a path of more than " +
                std::to_string(PATH_MAX) + " bytes\n");
}

std::string StatusOf(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(),
                   {FERNWICK_LAB_PROGRAM, "survey", "-p", "../examples/payload"});
  return testing::RunChild(arguments, FERNWICK_GOLDEN_DIRECTORY).status;
}

const std::string Planned = "../examples/ports-only.registry.plist";
const std::string Faulty = "recordings/bare-switch.registry.plist";
const std::string Unplanned = "recordings/typical.registry.plist";

TEST(SurveyStatus, IsThatOfTheFirstNamedRecordingThatIsRefused) {
  EXPECT_EQ(StatusOf({Planned, "none", Planned}), "66");
  EXPECT_EQ(StatusOf({"golden_test.cc", "none"}), "65");
  EXPECT_EQ(StatusOf({"none", "golden_test.cc", "--fail-on", "refused"}), "66");
}

TEST(SurveyStatus, IsNotThatOfARefusedRecordingInADirectory) {
  const testing::TemporaryDirectory directory;
  directory.Write("bad.registry.plist", "<dict/>");
  EXPECT_EQ(StatusOf({directory.Path()}), "0");
  EXPECT_EQ(StatusOf({directory.Path(), "--fail-on", "refused"}), "1");
  EXPECT_EQ(StatusOf({directory.Path() + "/bad.registry.plist"}), "65");
}

TEST(SurveyStatus, FailsOnTheOutcomesThatAreListed) {
  EXPECT_EQ(StatusOf({Planned, Faulty, Unplanned}), "0");
  EXPECT_EQ(StatusOf({Planned, Faulty, "--fail-on", "abnormal"}), "1");
  EXPECT_EQ(StatusOf({Planned, Faulty, "--fail-on", "refused,no-plan"}), "0");
  EXPECT_EQ(StatusOf({Planned, Unplanned, "--fail-on", "refused,no-plan"}), "1");
  EXPECT_EQ(StatusOf({Planned, "--fail-on", "refused,abnormal,no-plan"}), "0");
  for (const char* wrong : {"", "plan", "refused,", "refused abnormal"}) {
    EXPECT_EQ(StatusOf({Planned, "--fail-on", wrong}), "64") << wrong;
  }
}

}  // namespace
}  // namespace fernwick
