#include "lab/survey/diff/diff_row.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

// The line about one change of a computer, without its indentation.
std::string LineOf(const DiffChange& change) {
  const auto text =
      DescribeRow({.file = "f", .board = "Zed-42", .revision = 3, .changes = {change}});
  const std::string head = "f: board Zed-42, revision 3\n  ";
  return text.starts_with(head) ? text.substr(head.size()) : text;
}

TEST(DescribeRow, HasBothSidesOfAChange) {
  EXPECT_EQ(LineOf({ChangeKind::Priority, {}, 20, 30}), "priority: 20 -> 30\n");
  EXPECT_EQ(LineOf({ChangeKind::Image, "USBC", "a.bin", "b.bin"}), "image USBC: a.bin -> b.bin\n");
}

TEST(DescribeRow, HasBothSidesOfAMatchOfWhichOneLacksTheValue) {
  EXPECT_EQ(LineOf({ChangeKind::Image, "USBC", "a.bin", {}}), "image USBC: a.bin -> -\n");
  EXPECT_EQ(LineOf({ChangeKind::Version, "USBC", {}, 5}), "version USBC: - -> 5\n");
}

TEST(DescribeRow, HasTheOneSideOfAMatchOrAPlan) {
  EXPECT_EQ(LineOf({ChangeKind::GainsMatch, "USBC", {}, "9, a.bin", {"why", "and"}}),
            "gains match USBC: 9, a.bin\n    why\n    and\n");
  EXPECT_EQ(LineOf({ChangeKind::LosesMatch, "USBC", "9, a.bin", {}}),
            "loses match USBC: 9, a.bin\n");
  EXPECT_EQ(LineOf({ChangeKind::GainsPlan, {}, {}, {}}), "gains plan\n");
}

}  // namespace
}  // namespace fernwick::lab
