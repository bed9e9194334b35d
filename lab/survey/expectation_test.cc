#include "lab/survey/expectation.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

std::string Saved(const std::string& file, int status) {
  return PrintJsonRow(ToJson(SurveyRow{.file = file, .status = status}));
}

class Expectation : public ::testing::Test {
 protected:
  void Load(const std::string& rows) {
    directory_.Write("saved", rows);
    EXPECT_FALSE(expectation_.Load());
  }

  // The status of the row that is returned; -1 when there is none.
  int Take(const std::string& file) {
    const auto row = expectation_.ConsumeRowFor({.file = directory_.Path() + "/" + file});
    return row ? row->status.value() : -1;
  }

  std::string Left() {
    std::string files;
    expectation_.ForEachLeft([&](const SurveyRow& row) { files += row.file + " "; });
    return files;
  }

  testing::TemporaryDirectory directory_;
  SurveyExpectation expectation_{directory_.Path() + "/saved"};
};

TEST_F(Expectation, IsTakenInAnyOrder) {
  Load(Saved("a", 1) + Saved("b", 2) + Saved("c", 3) + Saved("d", 4));
  EXPECT_EQ(Take("c"), 3);
  EXPECT_EQ(Take("a"), 1);
  EXPECT_EQ(Take("e"), -1);
  EXPECT_EQ(Left(), "b d ");
}

TEST_F(Expectation, OfAFileThatIsThereTwiceIsTakenTwice) {
  Load(Saved("a", 1) + Saved("b", 2) + Saved("a", 3));
  EXPECT_EQ(Take("a"), 1);
  EXPECT_EQ(Take("a"), 3);
  EXPECT_EQ(Take("a"), -1);
  EXPECT_EQ(Left(), "b ");
}

TEST_F(Expectation, KnowsAFileWhoseNameIsNoText) {
  Load(Saved("a\xFF", 1));
  EXPECT_EQ(Take("a\xFF"), 1);
}

TEST_F(Expectation, MayBeEmptyAndLackItsLastLineFeed) {
  Load("");
  EXPECT_EQ(Take("a"), -1);
  auto rows = Saved("a", 1);
  rows.pop_back();
  SurveyExpectation other(directory_.Write("other", rows));
  EXPECT_FALSE(other.Load());
  EXPECT_TRUE(other.ConsumeRowFor({.file = directory_.Path() + "/a"}).has_value());
}

TEST_F(Expectation, ThatCannotBeUsedIsAnError) {
  SurveyExpectation other(directory_.Write("bad", Saved("a", 1) + "{}\n"));
  auto error = other.Load();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->error.message, "2: this is not a row of a survey");
  EXPECT_EQ(error->status, 65);
  SurveyExpectation missing("/no-such-file");
  error = missing.Load();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->error.message, "No such file or directory");
  EXPECT_EQ(error->status, 66);
}

TEST_F(Expectation, OfAPathRelativeToItsFileComesBeforeOneOfTheWorkingDirectory) {
  const auto inWorkingDirectory = std::filesystem::current_path().string() + "/a";
  Load(Saved(inWorkingDirectory, 1) + Saved("a", 2));
  EXPECT_EQ(expectation_.ConsumeRowFor({.file = "a"})->status, 1);
  EXPECT_EQ(expectation_.ConsumeRowFor({.file = "a"})->status, 2);
  EXPECT_EQ(Left(), "");
}

TEST_F(Expectation, IsSavedWithPathsRelativeToItsFile) {
  EXPECT_EQ(ParseSurveyRow(expectation_.RowToSave({.file = directory_.Path() + "/./b/a"}))->file,
            "b/a");
}

TEST(AreSame, IgnoresThePath) {
  EXPECT_TRUE(AreSame({.file = "a"}, {.file = "./a"}));
}

TEST(AreSame, IsFalseForAnotherPlan) {
  const SurveyRow a{.file = "a", .plan = PlanSummary{.priority = 20}};
  auto b = a;
  b.plan->priority = 21;
  EXPECT_FALSE(AreSame(a, b));
  b = a;
  b.plan->options = "-noreset";
  EXPECT_FALSE(AreSame(a, b));
}

TEST(AreSame, IsFalseForAnotherClassOrNearestMiss) {
  const NearestMiss miss = {
      .controller = "c", .type = "USBC", .personality = 1, .key = "RID", .text = "t"};
  const SurveyRow a{.file = "a", .computerClass = ComputerClass::Blocked, .miss = miss};
  auto b = a;
  b.computerClass = ComputerClass::Current;
  EXPECT_FALSE(AreSame(a, b));
  b = a;
  b.miss->personality = 2;
  EXPECT_FALSE(AreSame(a, b));
}

TEST(AreSame, IgnoresTheClassWhereOneHasNone) {
  const NearestMiss miss = {
      .controller = "c", .type = "USBC", .personality = 1, .key = "RID", .text = "t"};
  const SurveyRow a{.file = "a", .computerClass = ComputerClass::Blocked, .miss = miss};
  EXPECT_TRUE(AreSame(a, {.file = "a"}));
  EXPECT_TRUE(AreSame({.file = "a"}, a));
  EXPECT_FALSE(AreSame({.file = "a", .outcome = Outcome::Plan}, a));
}

TEST(AreSame, DistinguishesNumbersOfDifferentKinds) {
  SurveyRow a{.file = "a"};
  a.matches.emplace_back().version = 40;
  SurveyRow b = a;
  EXPECT_TRUE(AreSame(a, b));
  b.matches[0].version = 40.0;
  EXPECT_FALSE(AreSame(a, b));
}

}  // namespace
}  // namespace fernwick::lab
