// Checks the schema of keys against the requirements and the match record: the lab explains and
// judges personalities by the schema, so it must describe what they do.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "personality/match_record.h"
#include "personality/requirements.h"
#include "registry/key_schema.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/full_port_record.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::FullPortRecord;
using testing::Holding;
using testing::List;
using testing::With;
using testing::Without;

using Names = std::set<std::string>;

constexpr std::uint8_t BoardRevision = 3;

constexpr TypeSet EachType[] = {Types::LegacyThunderbolt, Types::Thunderbolt, Types::LegacyUsbc,
                                Types::Usbc};

// A value under each key that is checked, as a single value where that can match.
const Record Update = {
    {"Version", 42},
    {"Existing Min Version", 41},
    {"Existing Max Version", 42},
    {"Port Address", 0},
    {"RID", 2},
    {"MinBoardRevision", 3},
    {"MaxBoardRevision", 3},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Port OTP Revision", 1},
    {"Port UUID", List({"b0A1"})},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
    {"Ridge UID", 0x5A3},
    {"Device Model Name", "Grat"},
    {"Device Model ID", 30},
    {"Device Model Revision", 1},
    {"Firmware Mode", true},
};

bool Applies(TypeSet type, Dictionary personality) {
  testing::TestConsole console;
  const RequirementContext context{.hardware = FullPortRecord, .boardRevision = BoardRevision};
  return ControllerCheck(type, context).Applies(personality, console);
}

template <typename Predicate>
Names NamesWhere(Predicate predicate) {
  Names names;
  for (const auto& key : KeySchema()) {
    if (predicate(key)) names.emplace(key.name);
  }
  return names;
}

TEST(KeySchemaAgreement, EachTypeChecksTheKeysThatItsRequirementsName) {
  for (const TypeSet type : EachType) {
    Names read;
    for (const auto& requirement : RequirementsOf(type)) read.emplace(requirement.key);
    EXPECT_EQ(read, NamesWhere([type](const Key& key) { return (key.checkedBy & type) != 0; }))
        << type;
  }
}

TEST(KeySchemaAgreement, RequirementsReadKeysThatControllersHave) {
  for (const TypeSet type : EachType) {
    for (const auto& requirement : RequirementsOf(type)) {
      if (requirement.hardwareKey.empty()) continue;
      const auto* key = FindKey(requirement.hardwareKey);
      ASSERT_NE(key, nullptr) << requirement.hardwareKey;
      EXPECT_FALSE(key->port.property.empty() && key->thunderbolt.property.empty()) << key->name;
    }
  }
}

TEST(KeySchemaAgreement, KeysAreRequiredWhereAPersonalityWithoutAnyLacksThem) {
  for (const TypeSet type : EachType) {
    EXPECT_FALSE(Applies(type, {})) << type;
    Names lacking;
    for (const auto& requirement : RequirementsOf(type)) {
      const auto verdict = fernwick::Test(requirement, {}, {.hardware = FullPortRecord});
      if (!verdict.failure) continue;
      EXPECT_EQ(verdict.failure, FailureReason::PersonalityLacksKey) << requirement.key;
      lacking.emplace(requirement.key);
    }
    EXPECT_EQ(lacking, NamesWhere([type](const Key& key) {
                return (key.checkedBy & key.requiredBy & type) != 0;
              }))
        << type;
  }
}

// Also through the check as a whole: without a required key nothing matches, without another one
// the update does.
TEST(KeySchemaAgreement, NothingMatchesWithoutARequiredKey) {
  for (const auto& key : KeySchema()) {
    for (const TypeSet type : EachType) {
      const bool isRequired = (key.checkedBy & key.requiredBy & type) != 0;
      EXPECT_EQ(Applies(type, Without(Update, key.name)), !isRequired)
          << key.name << " under " << type;
    }
  }
}

// Every form of a value that some key accepts or might be thought to.
std::vector<PropertyValue> FormsOf(const PropertyValue& single) {
  return {single,
          List({single}),
          "x",
          List({"x"}),
          Array(),
          Dict({{"x", single}}),
          Date{5},
          testing::Bytes("x"),
          List({List({single})}),
          List({"x", 5, single})};
}

// Whether a value of the form, which contains `single`, matches under a key of the kind.
bool Accepts(KeyKind kind, const PropertyValue& form, const PropertyValue& single) {
  const auto list = form.AsArray();
  const bool contains = list && !list->empty() && (*list)[list->size() - 1] == single;
  switch (kind) {
    case KeyKind::OneNumber: return form == single;
    case KeyKind::NumberOrList:
    case KeyKind::StringOrList: return form == single || contains;
    case KeyKind::ListOfStrings: return contains;
    default: return false;
  }
}

TEST(KeySchemaAgreement, KeysHaveTheKindThatTheRequirementsAccept) {
  for (const auto& key : KeySchema()) {
    if (key.checkedBy == Types::None) continue;
    const auto* value = Update.Find(key.name);
    ASSERT_NE(value, nullptr) << key.name;
    const auto list = value->AsArray();
    const auto single = list ? (*list)[0] : *value;
    for (const auto& form : FormsOf(single)) {
      const auto update = With(Update, Holding(key.name, form));
      for (const TypeSet type : EachType) {
        const bool isChecked = (key.checkedBy & type) != 0;
        EXPECT_EQ(Applies(type, update), !isChecked || Accepts(key.kind, form, single))
            << key.name << " under " << type << ": " << ::testing::PrintToString(form);
      }
    }
  }
}

TEST(KeySchemaAgreement, AMatchRecordHasTheValueOfTheSideThatTheSchemaNames) {
  for (const auto& key : KeySchema()) {
    if (key.inMatch == MatchValue::ByOwnRule) continue;
    const Record personality = {{key.name, "of the personality"}};
    for (const auto& controller : {Record{{key.name, "of the controller"}}, Record()}) {
      const auto match = BuildMatchRecord(personality, controller, PersonalityType::Usbc);
      const auto* expected =
          (key.inMatch == MatchValue::OfController ? controller : personality).Find(key.name);
      const auto* value = match.Find(key.name);
      ASSERT_EQ(value != nullptr, expected != nullptr) << key.name;
      if (value != nullptr) {
        EXPECT_EQ(*value, *expected) << key.name;
      }
    }
  }
}

TEST(KeySchemaAgreement, OnlyTheRuleOfAKeyTakesAValueThatThePersonalityLacks) {
  for (const auto& key : KeySchema()) {
    if (key.inMatch == MatchValue::ByOwnRule) continue;
    const auto match = BuildMatchRecord(Record(), Record{{key.name, 5}}, PersonalityType::Usbc);
    EXPECT_EQ(match.Find(key.name), nullptr) << key.name;
  }
}

}  // namespace
}  // namespace fernwick
