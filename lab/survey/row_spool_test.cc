#include "lab/survey/row_spool.h"

#include <gtest/gtest.h>

#include <vector>

namespace fernwick::lab {
namespace {

TEST(RowSpool, GivesEveryLineBackInItsOrder) {
  RowSpool spool;
  std::vector<std::string> lines;
  for (int i = 0; i < 10'000; ++i)
    lines.push_back(std::string(static_cast<std::size_t>(i % 100), 'x') + std::to_string(i));
  lines.emplace_back();
  for (const auto& line : lines) spool.Add(line);
  std::vector<std::string> found;
  spool.ForEach([&](std::string_view line) { found.emplace_back(line); });
  EXPECT_EQ(found, lines);
  EXPECT_EQ(spool.Error(), "");
}

}  // namespace
}  // namespace fernwick::lab
