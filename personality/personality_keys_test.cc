#include "personality/personality_keys.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "personality/legacy_thunderbolt_check.h"
#include "personality/legacy_usbc_check.h"
#include "personality/personality.h"
#include "personality/thunderbolt_check.h"
#include "personality/usbc_check.h"
#include "testing/capture.h"
#include "testing/dictionaries.h"
#include "testing/inputs/full_port_record.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::FullPortRecord;
using Names = std::set<std::string>;

constexpr unsigned BoardRevision = 3;

// A value under each key that is checked, as a single value where that can match.
const Personality Update = {
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
    {"Port UUID", Array{"b0A1"}},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
    {"Ridge UID", 0x5A3},
    {"Device Model Name", "Grat"},
    {"Device Model ID", 30},
    {"Device Model Revision", 1},
    {"Firmware Mode", true},
};

struct TypeCheck {
  TypeSet type;
  bool (*applies)(const Personality&, RequirementRecorder*);
};

const std::vector<TypeCheck> Checks = {
    {Types::LegacyThunderbolt,
     [](const Personality& personality, RequirementRecorder* recorder) {
       return CheckLegacyThunderboltRequirements(personality, FullPortRecord, 0, recorder);
     }},
    {Types::Thunderbolt,
     [](const Personality& personality, RequirementRecorder* recorder) {
       return CheckThunderboltRequirements(personality, FullPortRecord, BoardRevision, recorder);
     }},
    {Types::LegacyUsbc,
     [](const Personality& personality, RequirementRecorder* recorder) {
       return CheckLegacyUsbcRequirements(personality, FullPortRecord, recorder);
     }},
    {Types::Usbc,
     [](const Personality& personality, RequirementRecorder* recorder) {
       return CheckUsbcRequirements(personality, FullPortRecord, BoardRevision, recorder);
     }},
};

template <typename Predicate>
Names NamesWhere(Predicate holds) {
  Names names;
  for (const auto& key : PersonalityKeys()) {
    if (holds(key)) names.emplace(key.name);
  }
  return names;
}

// Which of them the check of each type reads shows below, as it accepts only what the kind lets.
TEST(PersonalityKeys, NameEveryKeyThatAnyCheckReads) {
  Names read(std::begin(CheckedKeyNames), std::end(CheckedKeyNames));
  EXPECT_EQ(read.erase("Engineering Version"), 1) << "which only the hardware has";
  EXPECT_EQ(read, NamesWhere([](const PersonalityKey& key) { return key.checkedBy != 0; }));
}

TEST(PersonalityKeys, AreRequiredWhereAPersonalityWithoutAnyLacksThem) {
  for (const auto& [type, applies] : Checks) {
    RequirementRecorder recorder;
    EXPECT_FALSE(applies({}, &recorder)) << type;
    Names lacking;
    for (const auto& failure : recorder.Failures()) {
      EXPECT_EQ(failure.shortfall, Shortfall::PersonalityLacksKey) << failure.key;
      lacking.emplace(failure.key);
    }
    const auto required = [type = type](const PersonalityKey& key) {
      return (key.checkedBy & key.requiredBy & type) != 0;
    };
    EXPECT_EQ(lacking, NamesWhere(required)) << type;
  }
}

// Every form of a value that some key accepts or might be thought to.
std::vector<PropertyValue> FormsOf(const PropertyValue& single) {
  return {single,
          Array{single},
          "x",
          Array{"x"},
          Array{},
          Dictionary{{"x", single}},
          Date{5},
          testing::Bytes("x"),
          Array{Array{single}},
          Array{"x", 5, single}};
}

// Whether the kind lets the form, which holds `single`, match.
bool Accepts(KeyKind kind, const PropertyValue& form, const PropertyValue& single) {
  const auto* list = form.AsArray();
  const bool isHeld = list != nullptr && !list->empty() && list->back() == single;
  switch (kind) {
    case KeyKind::OneNumber: return form == single;
    case KeyKind::NumberOrList:
    case KeyKind::StringOrList: return form == single || isHeld;
    case KeyKind::ListOfStrings: return isHeld;
    default: return false;
  }
}

TEST(PersonalityKeys, HaveTheKindThatTheChecksAccept) {
  const testing::StandardErrorCapture diagnostics;
  for (const auto& key : PersonalityKeys()) {
    if (key.checkedBy == Types::None) continue;
    const auto* value = Update.Find(key.name);
    ASSERT_NE(value, nullptr) << key.name;
    const auto single = value->AsArray() == nullptr ? *value : value->AsArray()->front();
    for (const auto& form : FormsOf(single)) {
      const auto update = testing::With(Update, testing::Holding(key.name, form));
      for (const auto& [type, applies] : Checks) {
        const bool isChecked = (key.checkedBy & type) != 0;
        EXPECT_EQ(applies(update, nullptr), !isChecked || Accepts(key.kind, form, single))
            << key.name << " under " << type << ": " << ::testing::PrintToString(form);
      }
    }
  }
}

TEST(PersonalityKeys, AreFoundByTheirExactName) {
  for (const auto& key : PersonalityKeys()) EXPECT_EQ(FindPersonalityKey(key.name), &key);
  EXPECT_EQ(FindPersonalityKey("version"), nullptr);
  EXPECT_EQ(FindPersonalityKey("Version "), nullptr);
  EXPECT_EQ(FindPersonalityKey(""), nullptr);
  EXPECT_EQ(FindPersonalityKey("Personality Type"), nullptr);
}

TEST(TypeNamed, IsExact) {
  EXPECT_EQ(TypeNamed("LegacyThunderbolt"), Types::LegacyThunderbolt);
  EXPECT_EQ(TypeNamed("Thunderbolt"), Types::Thunderbolt);
  EXPECT_EQ(TypeNamed("LegacyUSBC"), Types::LegacyUsbc);
  EXPECT_EQ(TypeNamed("USBC"), Types::Usbc);
  EXPECT_EQ(TypeNamed("usbc"), Types::None);
  EXPECT_EQ(TypeNamed(""), Types::None);
}

}  // namespace
}  // namespace fernwick
