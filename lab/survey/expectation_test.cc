#include "lab/survey/expectation.h"

#include <gtest/gtest.h>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

std::string Saved(const std::string& file, int status) {
  return PrintJsonRow(ToJson(SurveyRow{.file = file, .status = status}));
}

class Expectation : public ::testing::Test {
 protected:
  void Load(const std::string& rows) {
    EXPECT_FALSE(expectation_.Load(directory_.Write("saved", rows)));
  }

  // The status of the row that is taken; -1 for none.
  int Take(const std::string& file) {
    const auto row = expectation_.TakeFor({.file = file});
    return row ? row->status.value() : -1;
  }

  std::string Left() {
    std::string files;
    expectation_.ForEachLeft([&](const SurveyRow& row) { files += row.file + " "; });
    return files;
  }

  testing::TemporaryDirectory directory_;
  SurveyExpectation expectation_;
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
  SurveyExpectation other;
  auto rows = Saved("a", 1);
  rows.pop_back();
  EXPECT_FALSE(other.Load(directory_.Write("other", rows)));
  EXPECT_TRUE(other.TakeFor({.file = "a"}).has_value());
}

TEST_F(Expectation, ThatCannotBeUsedIsAnError) {
  SurveyExpectation other;
  auto error = other.Load(directory_.Write("bad", Saved("a", 1) + "{}\n"));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->error.message, "2: this is no row of a survey");
  EXPECT_EQ(error->status, 65);
  SurveyExpectation missing;
  error = missing.Load("/no-such-file");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->error.message, "No such file or directory");
  EXPECT_EQ(error->status, 66);
}

TEST(AreSame, TellsNumbersOfDifferentKindsApart) {
  SurveyRow a{.file = "a"};
  a.matches.emplace_back().version = 40;
  SurveyRow b = a;
  EXPECT_TRUE(AreSame(a, b));
  b.matches[0].version = 40.0;
  EXPECT_FALSE(AreSame(a, b));
}

}  // namespace
}  // namespace fernwick::lab
