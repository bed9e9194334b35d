#include "lab/report/bars.h"

#include <gtest/gtest.h>

#include <set>

namespace fernwick::lab {
namespace {

TEST(Bars, HaveSegmentsOfTheirSharesAndATextAlternative) {
  EXPECT_EQ(
      BarsMarkup("id", "A <b>", {{"now", {{"old", 1, "s0"}, {"none", 0, "s1"}, {"new", 3, "s5"}}}}),
      "<svg class=\"bars\" role=\"img\" aria-labelledby=\"id-t id-d\" width=\"100%\" height=\"54\">"
      "<title id=\"id-t\">A &lt;b&gt;</title><desc id=\"id-d\">now: old: 1, new: 3.</desc>"
      "<text x=\"0\" y=\"14\">now</text>"
      "<rect x=\"0.000%\" y=\"20\" width=\"25.000%\" height=\"34\" fill=\"url(#s0)\"/>"
      "<text class=\"on s0\" x=\"12.500%\" y=\"42\">old</text>"
      "<rect x=\"25.000%\" y=\"20\" width=\"75.000%\" height=\"34\" fill=\"url(#s5)\"/>"
      "<text class=\"on s5\" x=\"62.500%\" y=\"42\">new</text></svg>\n");
}

TEST(Bars, WithoutAnythingSaySo) {
  EXPECT_NE(BarsMarkup("id", "A", {{"", {{"old", 0, "s0"}}}})
                .find("<desc id=\"id-d\">nothing.</desc></svg>"),
            std::string::npos);
}

TEST(Bars, LeaveOutALabelThatDoesNotFitOnAPhone) {
  const auto bars = BarsMarkup(
      "id", "A", {{"", {{"\u00E9\u00E9\u00E9", 92, "t0"}, {"x", 4, "t1"}, {"xx", 4, "t2"}}}});
  EXPECT_NE(bars.find(">\u00E9\u00E9\u00E9</text>"), std::string::npos);
  EXPECT_EQ(bars.find(">x</text>"), std::string::npos);
}

TEST(Bars, SpreadShadesOverTheScale) {
  EXPECT_EQ(Shade(0, 1), "s5");
  EXPECT_EQ(Shade(0, 2), "s0");
  EXPECT_EQ(Shade(1, 2), "s5");
  EXPECT_EQ(Shade(1, 3), "s2");
}

TEST(Bars, FillWithPatternsOfWhichNoTwoAreEqual) {
  const auto patterns = FillPatterns();
  std::set<std::string> paths;
  for (std::size_t i = 0; i < ToneCount; ++i) {
    const auto begin = patterns.find("<path", patterns.find("id=\"" + Tone(i) + "\""));
    paths.insert(patterns.substr(begin, patterns.find("/>", begin) - begin));
  }
  EXPECT_EQ(paths.size(), ToneCount);
}

}  // namespace
}  // namespace fernwick::lab
