#include "plan/plan_values.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;

std::uint32_t LowestPriorityOf(std::initializer_list<MatchRecord> matches) {
  PlanValues plan;
  for (const auto& match : matches) FoldPriority(match, plan);
  return plan.lowestPriority;
}

TEST(FoldPriority, KeepsTheSmallestOfSeveral) {
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 50}}, {{"Priority", 20}}}), 20u);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 20}}, {{"Priority", 50}}}), 20u);
}

TEST(FoldPriority, GreatestUnsignedNeverLowersIt) {
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 4294967295}}}), 2147483647u);
}

TEST(FoldPriority, JustBelowTheInitialValueLowersIt) {
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 0x7FFFFFFE}}}), 0x7FFFFFFEu);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 0x7FFFFFFF}}}), 0x7FFFFFFFu);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 0x80000000}}}), 0x7FFFFFFFu);
}

TEST(FoldPriority, AbsentCountsAsZero) {
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 50}}, {}}), 0u);
}

TEST(FoldPriority, WithoutMatchesIsTheInitialValue) {
  EXPECT_EQ(LowestPriorityOf({}), 2147483647u);
}

TEST(FoldPriority, ReadsLowBitsTextAndOtherKindsAsNumbers) {
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 0x100000007}}}), 7u);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", -1}}}), 2147483647u);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", "12"}}}), 12u);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", 3.9}}}), 3u);
  EXPECT_EQ(LowestPriorityOf({{{"Priority", List({5})}}}), 0u);
}

using Values = std::vector<PropertyValue>;

PlanValues MergedFrom(std::initializer_list<MatchRecord> matches) {
  PlanValues plan;
  for (const auto& match : matches) MergeNvram(match, plan);
  return plan;
}

TEST(MergeNvram, LaterMatchWinsInTheEarlierPosition) {
  const auto plan = MergedFrom(
      {{{"SetNVRAM", Dict({{"a", "1"}, {"b", "1"}})}}, {{"SetNVRAM", Dict({{"c", 2}, {"a", 2}})}}});
  EXPECT_EQ(NvramToSet(plan), (Record{{"a", 2}, {"b", "1"}, {"c", 2}}));
}

// As merging them one after the other would.
TEST(MergeNvram, OfManyMatchesOfTheSamePersonalitiesIsTheSame) {
  const MatchRecord a = {{"SetNVRAM", Dict({{"x", "a"}, {"y", "a"}})}};
  const MatchRecord b = {{"SetNVRAM", Dict({{"y", "b"}, {"z", "b"}})}};
  const MatchRecord empty = {{"SetNVRAM", Dictionary()}};
  const auto merged = [](std::initializer_list<MatchRecord> matches) {
    return NvramToSet(MergedFrom(matches));
  };
  EXPECT_EQ(merged({a, b, a}), (Record{{"x", "a"}, {"y", "a"}, {"z", "b"}}));
  EXPECT_EQ(merged({b, a, b, b}), (Record{{"y", "b"}, {"z", "b"}, {"x", "a"}}));
  EXPECT_EQ(merged({empty, a, empty, a}), (Record{{"x", "a"}, {"y", "a"}}));
}

TEST(MergeNvram, KeepsDuplicatesToClear) {
  const auto plan = MergedFrom({{{"ClearNVRAM", List({"x", "y"})}}, {{"ClearNVRAM", List({"x"})}}});
  EXPECT_EQ(NvramToClear(plan), (Values{"x", "y", "x"}));
}

TEST(MergeNvram, CarriesElementsThatAreNotStrings) {
  const auto plan = MergedFrom({{{"ClearNVRAM", List({1, Dict({{"a", true}})})}}});
  EXPECT_EQ(NvramToClear(plan), (Values{1, Dict({{"a", true}})}));
}

TEST(MergeNvram, AbsentAddsNothing) {
  const auto plan = MergedFrom({{{"Firmware", "a.bin"}}});
  EXPECT_EQ(NvramToSet(plan), Record());
  EXPECT_EQ(NvramToClear(plan), Values());
}

TEST(MergeNvram, IgnoresOtherShapes) {
  const auto plan = MergedFrom({{{"SetNVRAM", List({"a"})}, {"ClearNVRAM", Dict({{"a", 1}})}},
                                {{"SetNVRAM", "a"}, {"ClearNVRAM", "a"}}});
  EXPECT_EQ(NvramToSet(plan), Record());
  EXPECT_EQ(NvramToClear(plan), Values());
}

TEST(MergeNvram, SetAndClearOfOneVariableAreBothKept) {
  const auto plan = MergedFrom({{{"SetNVRAM", Dict({{"a", 1}})}, {"ClearNVRAM", List({"a"})}}});
  EXPECT_EQ(NvramToSet(plan), (Record{{"a", 1}}));
  EXPECT_EQ(NvramToClear(plan), (Values{"a"}));
}

}  // namespace
}  // namespace fernwick
