#include "lab/report/markup.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

TEST(ReportMarkup, GroupsTheDigitsOfANumber) {
  EXPECT_EQ(NumberText(0), "0");
  EXPECT_EQ(NumberText(999), "999");
  EXPECT_EQ(NumberText(1'000), "1,000");
  EXPECT_EQ(NumberText(12'345'678), "12,345,678");
}

TEST(ReportMarkup, HasSharesInTenthsOfAPercent) {
  EXPECT_EQ(ShareText(2, 3), "66.6 %");
  EXPECT_EQ(ShareText(0, 0), "0.0 %");
}

TEST(ReportMarkup, LinksANumberUnlessItIsZero) {
  EXPECT_EQ(NumberLink("a", 1234), "<a href=\"#a\">1,234</a>");
  EXPECT_EQ(NumberLink("a", 0), "0");
}

TEST(ReportMarkup, QuotesAnArgumentForAShell) {
  EXPECT_EQ(ShellWord("a/b-1.plist"), "a/b-1.plist");
  EXPECT_EQ(ShellWord("it's"), "'it'\\''s'");
  EXPECT_EQ(ShellWord(""), "''");
}

TEST(ReportMarkup, NamesTheCommandForWhatIsNotListed) {
  EXPECT_EQ(OthersMarkup(0, "x"), "");
  EXPECT_EQ(OthersMarkup(1200, "a <b>"),
            "<p class=\"more\">1,200 more; all: <code>a &lt;b&gt;</code></p>\n");
}

TEST(ReportMarkup, CountsComputers) {
  EXPECT_EQ(ComputersText(1), "1 computer");
  EXPECT_EQ(ComputersText(0), "0 computers");
}

}  // namespace
}  // namespace fernwick::lab
