// Which keys of a personality reach the plan.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

#include "personality/personality_keys.h"
#include "plan/invocation_builder.h"
#include "plan/plan_values.h"
#include "testing/capture.h"
#include "testing/lookup_spy.h"

namespace fernwick {
namespace {

using Names = std::set<std::string>;

// Adds one match to a plan. False when the match ends the run.
bool Plan(const MatchRecord& match) {
  const testing::StandardErrorCapture errors;
  PlanValues plan;
  InvocationBuilder builder("/P/Fernwick/", "Zed-42");
  FoldPriority(match, plan);
  return builder.AddMatch(match, plan, nullptr);
}

// What the plan of a match of the type looks up.
Names KeysPlannedOf(std::string_view type) {
  const MatchRecord match = {{"Personality Type", type}, {"Firmware", "image.bin"}};
  const testing::LookupSpy spy(match);
  EXPECT_TRUE(Plan(match)) << type;
  return spy.Keys();
}

// Those of the table, and those that the matcher has set.
Names KeysExpectedOf(std::string_view type, Names keys) {
  keys.insert("Personality Type");
  for (const auto& key : PersonalityKeys()) {
    if ((key.plannedBy & TypeNamed(type)) != 0) keys.emplace(key.name);
  }
  return keys;
}

TEST(PlannedKeys, AreExactlyThoseThatThePlanLooksUp) {
  EXPECT_EQ(KeysPlannedOf("LegacyThunderbolt"), KeysExpectedOf("LegacyThunderbolt", {"RID"}));
  EXPECT_EQ(KeysPlannedOf("Thunderbolt"), KeysExpectedOf("Thunderbolt", {"RID", "Firmware Mode"}));
  EXPECT_EQ(KeysPlannedOf("LegacyUSBC"), KeysExpectedOf("LegacyUSBC", {}));
  EXPECT_EQ(KeysPlannedOf("USBC"), KeysExpectedOf("USBC", {}));
}

TEST(PlannedKeys, AreRequiredWhereTheRunEndsWithoutThem) {
  for (const auto& key : PersonalityKeys()) {
    if (key.plannedBy == Types::None) continue;
    MatchRecord match = {{"Personality Type", "LegacyThunderbolt"}};
    if (key.name != "Firmware") match.Set("Firmware", "image.bin");
    EXPECT_EQ(Plan(match), (key.requiredBy & Types::LegacyThunderbolt) == 0) << key.name;
  }
}

}  // namespace
}  // namespace fernwick
