// Checks that the schema of keys agrees with the requirements and with the match record: the lab
// explains and lints personalities by the schema.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "personality/match_record.h"
#include "personality/requirements.h"
#include "registry/key_schema.h"
#include "testing/dictionaries.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;
using testing::SingleEntry;
using testing::With;
using testing::Without;
using Names = std::set<std::string>;

// A value under each key that is checked, as a single value where that can match.
Record MakeUpdate() {
  Record update;
  for (const auto& key : KeySchema()) {
    if (key.kind == KeyKind::NumberOrList) update.Set(key.name, 41);
    if (key.kind == KeyKind::StringOrList) update.Set(key.name, "Grat");
    if (key.kind == KeyKind::ListOfStrings) update.Set(key.name, List({"Grat"}));
  }
  update.Merge(Record{{"Version", 42},
                      {"Existing Min Version", 41},
                      {"Existing Max Version", 42},
                      {"MinBoardRevision", 3},
                      {"MaxBoardRevision", 3}});
  return update;
}

const Record Update = MakeUpdate();

// A controller that it fits, with a value under each key that a record can have.
Record MakeController() {
  Record controller;
  for (const auto& key : KeySchema()) {
    if (key.port.property.empty() && key.thunderbolt.property.empty()) continue;
    const bool isText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
    controller.Set(key.name, isText ? PropertyValue("Grat") : 41);
  }
  controller.Set("Engineering Version", 0);
  return controller;
}

const Record Controller = MakeController();

constexpr TypeSet AllTypes[] = {Types::LegacyThunderbolt, Types::Thunderbolt, Types::LegacyUsbc,
                                Types::Usbc};

RequirementContext FullContext() {
  return {Controller, 3};
}

bool Applies(TypeSet type, const Record& personality) {
  testing::TestConsole console;
  return ControllerCheck(type, FullContext()).Applies(personality, console);
}

template <typename Predicate>
Names NamesWhere(Predicate isWanted) {
  Names names;
  for (const auto& key : KeySchema()) {
    if (isWanted(key)) names.emplace(key.name);
  }
  return names;
}

TEST(CheckedKeys, AreThoseWithARequirementOfTheType) {
  for (const auto type : AllTypes) {
    Names required;
    for (const auto& requirement : RequirementsOf(type)) required.emplace(requirement.key);
    EXPECT_EQ(required, NamesWhere([=](const Key& key) { return (key.checkedBy & type) != 0; }))
        << type;
  }
}

TEST(CheckedKeys, AreComparedWithKeysThatARecordCanHave) {
  for (const auto& requirement : RequirementsOf(Types::Thunderbolt)) {
    const bool isOfBoard = requirement.hardwareKey.empty();
    EXPECT_EQ(isOfBoard, requirement.key.ends_with("BoardRevision")) << requirement.key;
    if (isOfBoard) continue;
    const auto* key = FindKey(requirement.hardwareKey);
    ASSERT_NE(key, nullptr) << requirement.key;
    EXPECT_FALSE(key->port.property.empty() && key->thunderbolt.property.empty()) << key->name;
  }
}

TEST(CheckedKeys, AreRequiredWhereAPersonalityWithoutAnyLacksThem) {
  for (const auto type : AllTypes) {
    EXPECT_FALSE(Applies(type, {})) << type;
    Names lacking;
    for (const auto& requirement : RequirementsOf(type)) {
      const auto verdict = fernwick::Test(requirement, {}, FullContext());
      if (!verdict.failure) continue;
      EXPECT_EQ(*verdict.failure, FailureReason::PersonalityLacksKey) << requirement.key;
      lacking.emplace(requirement.key);
    }
    const auto isRequired = [=](const Key& key) {
      return (key.checkedBy & key.requiredBy & type) != 0;
    };
    EXPECT_EQ(lacking, NamesWhere(isRequired)) << type;
  }
}

// Also through the check as a whole: without a required key nothing matches, without another one
// the update does.
TEST(CheckedKeys, AreRequiredWhereNothingMatchesWithoutThem) {
  for (const auto& key : KeySchema()) {
    for (const TypeSet type : AllTypes) {
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

// Whether the kind lets the form, which contains `single`, match.
bool Accepts(KeyKind kind, const PropertyValue& form, const PropertyValue& single) {
  const auto list = form.AsArray();
  const bool isElement = list && !list->empty() && (*list)[list->size() - 1] == single;
  switch (kind) {
    case KeyKind::OneNumber: return form == single;
    case KeyKind::NumberOrList:
    case KeyKind::StringOrList: return form == single || isElement;
    case KeyKind::ListOfStrings: return isElement;
    default: return false;
  }
}

TEST(CheckedKeys, HaveTheKindThatTheChecksAccept) {
  for (const auto& key : KeySchema()) {
    if (key.checkedBy == Types::None) continue;
    const auto* value = Update.Find(key.name);
    ASSERT_NE(value, nullptr) << key.name;
    const auto list = value->AsArray();
    const auto single = list ? (*list)[0] : *value;
    for (const auto& form : FormsOf(single)) {
      const auto update = With(Update, SingleEntry(key.name, form));
      for (const auto type : AllTypes) {
        const bool isChecked = (key.checkedBy & type) != 0;
        EXPECT_EQ(Applies(type, update), !isChecked || Accepts(key.kind, form, single))
            << key.name << " under " << type << ": " << ::testing::PrintToString(form);
      }
    }
  }
}

TEST(MatchValue, IsOfTheSideThatTheSchemaNames) {
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

TEST(MatchValue, IsNotAddedWhereThePersonalityLacksTheKey) {
  for (const auto& key : KeySchema()) {
    if (key.inMatch == MatchValue::ByOwnRule) continue;
    const auto match = BuildMatchRecord(Record(), Record{{key.name, 5}}, PersonalityType::Usbc);
    EXPECT_EQ(match.Find(key.name), nullptr) << key.name;
  }
}

}  // namespace
}  // namespace fernwick
