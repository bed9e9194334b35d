#include "lab/survey/totals.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

SurveyRow RowWith(std::vector<DiagnosticCount> diagnostics) {
  return {.file = "f", .outcome = Outcome::NoPlan, .diagnostics = std::move(diagnostics)};
}

TEST(SurveyTotals, OfNothing) {
  EXPECT_EQ(Describe(SurveyTotals{}),
            "0 computers: 0 with a plan, 0 without, 0 bypassed, 0 refused, 0 ended abnormally; 0 "
            "matches\n");
}

TEST(SurveyTotals, HaveTheMostFrequentDiagnosticFirstAndEqualOnesByTheirText) {
  SurveyTotals totals;
  totals.Add(RowWith({{"seldom", 1}, {"often", 3}}));
  totals.Add(RowWith({{"often", 2}, {"never", 1}, {"\x1B[31m", 4}}));
  EXPECT_EQ(Describe(totals),
            "2 computers: 0 with a plan, 2 without, 0 bypassed, 0 refused, 0 ended abnormally; 0 "
            "matches\n"
            "  5 x often\n"
            "  4 x \\033[31m\n"
            "  1 x never\n"
            "  1 x seldom\n");
}

TEST(SurveyTotals, CountTheMatchesWithoutAnImageFile) {
  SurveyTotals totals;
  SurveyRow row{.file = "a", .outcome = Outcome::Plan};
  row.matches.resize(3);
  row.matches[1].isImageMissing = true;
  totals.Add(row);
  EXPECT_EQ(Describe(totals),
            "1 computer: 1 with a plan, 0 without, 0 bypassed, 0 refused, 0 ended abnormally; 3 "
            "matches, 1 without the image file\n");
}

TEST(SurveyTotals, KeepSoManyTextsAndCountTheOthers) {
  SurveyTotals totals;
  for (std::size_t i = 0; i < SurveyTotals::MaxDiagnostics; ++i) {
    totals.Add(RowWith({{std::to_string(i), 1}}));
  }
  totals.Add(RowWith({{"new", 2}, {"0", 5}}));
  totals.Add(RowWith({{"newer", 3}}));
  EXPECT_EQ(totals.diagnostics.size(), SurveyTotals::MaxDiagnostics);
  EXPECT_EQ(totals.diagnostics.at("0"), 6u);
  const auto text = Describe(totals);
  const std::string others = "\n  5 x (others)\n";
  EXPECT_EQ(text.substr(text.size() - others.size()), others);
}

}  // namespace
}  // namespace fernwick::lab
