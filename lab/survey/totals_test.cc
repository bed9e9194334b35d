#include "lab/survey/totals.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

SurveyRow RowWith(std::vector<DiagnosticCount> diagnostics) {
  return {.file = "f",
          .outcome = Outcome::NoPlan,
          .computerClass = ComputerClass::Unmatched,
          .board = "Zed-42",
          .diagnostics = std::move(diagnostics)};
}

SurveyRow RowOf(ComputerClass computerClass, std::optional<std::string> board) {
  return {.file = "f", .computerClass = computerClass, .board = std::move(board)};
}

SurveyRow BlockedRow(const std::string& key) {
  auto row = RowOf(ComputerClass::Blocked, "Zed-42");
  row.miss = {.controller = {}, .type = {}, .personality = 1, .key = key, .text = {}};
  return row;
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
            "  classes: 2 unmatched\n"
            "  board Zed-42: 2 unmatched\n"
            "  5 x often\n"
            "  4 x \\033[31m\n"
            "  1 x never\n"
            "  1 x seldom\n");
}

TEST(SurveyTotals, CountTheMatchesWithoutAnImageFile) {
  SurveyTotals totals;
  SurveyRow row{.file = "a", .outcome = Outcome::Plan, .computerClass = ComputerClass::Planned};
  row.matches.resize(3);
  row.matches[1].isImageMissing = true;
  totals.Add(row);
  EXPECT_EQ(Describe(totals),
            "1 computer: 1 with a plan, 0 without, 0 bypassed, 0 refused, 0 ended abnormally; 3 "
            "matches, 1 without the image file\n"
            "  classes: 1 planned\n"
            "  board -: 1 planned\n");
}

TEST(SurveyTotals, HaveALineOfClassesForEveryBoardAndOneForEveryKeyThatBlocks) {
  SurveyTotals totals;
  totals.Add(RowOf(ComputerClass::Planned, "Zed-43"));
  totals.Add(RowOf(ComputerClass::Current, "Zed-43"));
  totals.Add(RowOf(ComputerClass::Planned, "Zed-43"));
  totals.Add(RowOf(ComputerClass::Refused, std::nullopt));
  totals.Add(RowOf(ComputerClass::UnknownBoard, std::nullopt));
  totals.Add(RowOf(ComputerClass::UnknownBoard, "\x1B"));
  totals.Add(BlockedRow("MaxBoardRevision"));
  totals.Add(BlockedRow("Version"));
  totals.Add(BlockedRow("Version"));
  EXPECT_EQ(totals.Count(ComputerClass::Planned), 2u);
  const auto text = Describe(totals);
  EXPECT_EQ(text.substr(text.find('\n') + 1),
            "  classes: 2 planned, 1 current, 3 blocked, 2 unknown board, 1 refused\n"
            "  board \\033: 1 unknown board\n"
            "  board -: 1 unknown board\n"
            "  board Zed-42: 3 blocked\n"
            "  board Zed-43: 2 planned, 1 current\n"
            "  2 blocked by Version\n"
            "  1 blocked by MaxBoardRevision\n");
}

TEST(SurveyTotals, KeepSoManyBoardsAndCountTheOthers) {
  SurveyTotals totals;
  for (std::size_t i = 0; i < SurveyTotals::MaxBoards; ++i) {
    totals.Add(RowOf(ComputerClass::Planned, std::to_string(i)));
  }
  totals.Add(RowOf(ComputerClass::Planned, "new"));
  totals.Add(RowOf(ComputerClass::Current, "newer"));
  totals.Add(RowOf(ComputerClass::Current, "0"));
  const auto text = Describe(totals);
  EXPECT_NE(text.find("\n  board 0: 1 planned, 1 current\n"), std::string::npos);
  const std::string others = "\n  (other boards): 1 planned, 1 current\n";
  EXPECT_EQ(text.substr(text.size() - others.size()), others);
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
