#include <gtest/gtest.h>

#include "lab/survey/matched_pairs.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

HardwareRecord Controller(int rid) {
  return {{"RID", rid}};
}

TEST(MatchedPairs, AreThoseThatMatchedInTheOrderOfThePlan) {
  const PairDecision rejected{PairOutcome::Rejected};
  const PairDecision matched{PairOutcome::Matched};
  const PairDecision notReached{PairOutcome::NotReached};
  RunRecorder run;
  run.matching.keys = {
      {.key = "Other"},
      {.key = "USBC",
       .controllers = {{Controller(0), {rejected, matched, notReached}},
                       {Controller(1), {rejected, rejected, rejected}},
                       {Controller(2), {matched, notReached, notReached}}}},
      {.key = "LegacyUSBC", .controllers = {{Controller(0), {}}, {Controller(1), {matched}}}}};
  run.matches = {{{"Firmware", "a"}}, {{"Firmware", "b"}}, {{"Firmware", "c"}}};
  std::string found;
  for (const auto& pair : MatchedPairs(run)) {
    EXPECT_EQ(pair.Controller(), Controller(static_cast<int>(pair.controller)));
    found += pair.key->key + " " + std::to_string(pair.controller) + " " +
             std::to_string(pair.personality) + " " +
             std::string(*pair.match->Find("Firmware")->AsString()) + "\n";
  }
  EXPECT_EQ(found, "USBC 0 1 a\nUSBC 2 0 b\nLegacyUSBC 1 0 c\n");
}

}  // namespace
}  // namespace fernwick::lab
