#include "lab/survey/coverage/coverage_counts.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/dictionaries.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;

// The coverage of a personality with a list of two elements, and of a key that names no type,
// without a run.
BoardCoverage Nothing() {
  return BoardCoverage(
      Dict({{"LegacyUSBC", Dict({{"Port Address", List({1, 2})}})}, {"Notes", List({})}}));
}

BoardCoverage Counted() {
  auto coverage = Nothing();
  coverage.runs = 4;
  auto& key = coverage.keys[0];
  key.Count(0, 0);
  key.Count(0, key.rejected.size());
  key.elements.Count(1, 5);
  key.elements.Count(0, key.rejected.size());
  return coverage;
}

TEST(CoverageCountsAsJson, AreAllCounts) {
  EXPECT_EQ(CountsToJson(Counted()), Json::parse(R"({
    "runs": 4,
    "keys": [
      {"personalities": {"tested": [2], "matched": [1], "rejected": [[1], [], [], [], [], []]},
       "elements": {"tested": [1, 1], "matched": [1, 0],
                    "rejected": [[], [], [], [], [], [0, 1]]}},
      {"personalities": {"tested": [], "matched": [], "rejected": []},
       "elements": {"tested": [], "matched": [], "rejected": []}}]})"));
}

TEST(CoverageCountsAsJson, AreAddedAsTheCountsThemselves) {
  auto coverage = Nothing();
  EXPECT_TRUE(AddCountsOf(CountsToJson(Counted()), coverage));
  EXPECT_EQ(coverage, Counted());
  EXPECT_TRUE(AddCountsOf(CountsToJson(Counted()), coverage));
  auto twice = Counted();
  EXPECT_TRUE(twice.Add(Counted()));
  EXPECT_EQ(coverage, twice);
  EXPECT_TRUE(AddCountsOf(CountsToJson(Nothing()), coverage));
  EXPECT_EQ(coverage, twice);
}

TEST(CoverageCountsAsJson, OfAnotherConfigurationAreNotAdded) {
  const BoardCoverage others[] = {
      BoardCoverage(Dict({{"LegacyUSBC", Dict({{"Port Address", List({1, 2})}})}})),
      BoardCoverage(Dict({{"LegacyUSBC", Dict({{"Port Address", List({1})}})}, {"Notes", 1}})),
      BoardCoverage(Dict({{"USBC", List({Dict({{"RID", List({1, 2})}})})}, {"Notes", 1}})),
      BoardCoverage(Dict({{"LegacyUSBC", List({})}, {"Notes", 1}}))};
  for (const auto& other : others) {
    auto coverage = Nothing();
    EXPECT_FALSE(AddCountsOf(CountsToJson(other), coverage));
  }
}

TEST(CoverageCountsAsJson, ThatAreNoCountsAreNotAdded) {
  const auto isAdded = [](const Json& json) {
    auto coverage = Nothing();
    return AddCountsOf(json, coverage);
  };
  const auto whole = CountsToJson(Counted());
  EXPECT_FALSE(isAdded(nullptr));
  EXPECT_FALSE(isAdded(Json::array()));
  // Without each of its members, and with another value for it, at each level.
  for (const auto* path : {"/runs", "/keys", "/keys/0/personalities", "/keys/0/elements",
                           "/keys/0/personalities/tested", "/keys/0/personalities/matched",
                           "/keys/0/personalities/rejected", "/keys/0/elements/tested",
                           "/keys/0/elements/matched", "/keys/0/elements/rejected"}) {
    const Json::json_pointer pointer(path);
    auto without = whole;
    without[pointer.parent_pointer()].erase(pointer.back());
    EXPECT_FALSE(isAdded(without)) << path;
    for (const Json& value : {Json(nullptr), Json(-1), Json("4"), Json::array({1, 2, 3})}) {
      auto changed = whole;
      changed[pointer] = value;
      EXPECT_FALSE(isAdded(changed)) << path << " is " << value;
    }
  }
  for (const auto* path : {"/keys/1", "/keys/0/personalities/tested/0",
                           "/keys/0/elements/rejected/5/1", "/keys/0/elements/rejected/5"}) {
    auto changed = whole;
    changed[Json::json_pointer(path)] = "4";
    EXPECT_FALSE(isAdded(changed)) << path;
  }
}

}  // namespace
}  // namespace fernwick::lab
