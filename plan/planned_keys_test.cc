// Determines which keys of a personality and of a match reach the plan: those whose value changes
// it.

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "personality/personality.h"
#include "plan/invocation_builder.h"
#include "plan/launcher_plist.h"
#include "plan/plan_values.h"
#include "registry/key_schema.h"
#include "testing/dictionaries.h"
#include "testing/inputs/full_port_record.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::FullPortRecord;
using testing::List;
using testing::SingleEntry;
using testing::With;
using testing::Without;

using Names = std::set<std::string>;

constexpr std::string_view AllTypes[] = {
    PersonalityType::LegacyThunderbolt,
    PersonalityType::Thunderbolt,
    PersonalityType::LegacyUsbc,
    PersonalityType::Usbc,
};

// The plan of one match as it is printed; nothing when the match ends the run.
std::optional<std::string> PlanOf(const MatchRecord& match) {
  testing::TestConsole console;
  PlanValues plan;
  InvocationBuilder builder("/P/Fernwick/", "Zed-42");
  FoldPriority(match, plan);
  if (!builder.AddMatch(match, plan, false, console)) return std::nullopt;
  builder.FinishInvocation();
  EXPECT_EQ(WritePlan(console, false, builder.Arguments(), plan), 0);
  return console.Output();
}

// Every key of the schema with a value other than those below, and one key that is unused.
Record EveryKey() {
  Record record = {{"Colour", "blue"}};
  for (const auto& key : KeySchema()) record.Set(key.name, 50);
  record.Set("Firmware", "image.bin");
  record.Set("SetNVRAM", Dict({{"a", 1}}));
  record.Set("ClearNVRAM", List({"b"}));
  return record;
}

const std::vector<PropertyValue> OtherValues = {
    0, 1, 7, -1, 2.5, true, "other.bin", "", List({"x"}), Dict({{"x", 1}}),
};

// The keys of the record for which another value, or none, changes the plan. `planOf` makes a plan
// of such a record.
template <typename PlanOfRecord>
Names KeysThatChangeThePlan(const Record& record, PlanOfRecord planOf) {
  const auto plan = planOf(record);
  EXPECT_TRUE(plan.has_value());
  Names names;
  for (const auto& entry : record.Entries()) {
    bool changes = planOf(Without(record, entry.key)) != plan;
    for (const auto& value : OtherValues) {
      changes = changes || planOf(With(record, SingleEntry(entry.key, value))) != plan;
    }
    if (changes) names.emplace(entry.key);
  }
  return names;
}

Names PlannedKeysOf(std::string_view type) {
  Names names;
  for (const auto& key : KeySchema()) {
    if ((key.plannedBy & TypeNamed(type)) != 0) names.emplace(key.name);
  }
  return names;
}

TEST(PlannedKeys, OfAPersonalityAreExactlyThoseThatChangeThePlan) {
  for (const auto type : AllTypes) {
    const auto planOf = [=](const Record& personality) {
      return PlanOf(BuildMatchRecord(personality, FullPortRecord, type));
    };
    EXPECT_EQ(KeysThatChangeThePlan(EveryKey(), planOf), PlannedKeysOf(type)) << type;
  }
}

// Those of the personality, and those that the matcher sets.
Names KeysOfMatchesOf(std::string_view type, Names keysOfController) {
  keysOfController.merge(PlannedKeysOf(type));
  keysOfController.insert("Personality Type");
  return keysOfController;
}

TEST(PlannedKeys, OfAMatchAreTheTypeAndSomeOfTheController) {
  const auto keysOf = [](std::string_view type) {
    return KeysThatChangeThePlan(With(EveryKey(), {{"Personality Type", type}}), PlanOf);
  };
  EXPECT_EQ(keysOf("LegacyThunderbolt"), KeysOfMatchesOf("LegacyThunderbolt", {"RID"}));
  EXPECT_EQ(keysOf("Thunderbolt"), KeysOfMatchesOf("Thunderbolt", {"RID", "Firmware Mode"}));
  EXPECT_EQ(keysOf("LegacyUSBC"), KeysOfMatchesOf("LegacyUSBC", {}));
  EXPECT_EQ(keysOf("USBC"), KeysOfMatchesOf("USBC", {}));
}

TEST(PlannedKeys, AreRequiredWhereTheRunEndsWithoutThem) {
  for (const auto type : AllTypes) {
    const auto match = With(EveryKey(), {{"Personality Type", type}});
    for (const auto& key : KeySchema()) {
      const bool isNeeded = (key.plannedBy & key.requiredBy & TypeNamed(type)) != 0;
      EXPECT_EQ(PlanOf(Without(match, key.name)).has_value(), !isNeeded) << key.name;
    }
  }
}

}  // namespace
}  // namespace fernwick
