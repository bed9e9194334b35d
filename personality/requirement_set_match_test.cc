#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "personality/requirements.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/odd_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::List;
using testing::NestedArrays;
using testing::NonNumbers;
using testing::SingleEntry;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint64_t MaxUnsigned = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t TwoTo53 = std::uint64_t{1} << 53;

constexpr char Key[] = "RID";
constexpr char Missing[] = "** Missing\n";

using enum KeyPresence;
using enum SingleValueKind;

constexpr Requirement SilentOptional = {.key = Key, .hardwareKey = Key};
constexpr Requirement SilentRequired = {.key = Key, .hardwareKey = Key, .presence = RequiredKey};
constexpr Requirement Optional = {.key = Key, .hardwareKey = Key, .missingKeyMessage = Missing};
constexpr Requirement Required = {
    .key = Key, .hardwareKey = Key, .presence = RequiredKey, .missingKeyMessage = Missing};
constexpr Requirement Text = {
    .key = Key, .hardwareKey = Key, .kind = StringKind, .equal = StringsEqual};
constexpr Requirement NumberComparedAsText = {
    .key = Key, .hardwareKey = Key, .kind = NumberKind, .equal = StringsEqual};
constexpr Requirement TextComparedAsNumber = {
    .key = Key, .hardwareKey = Key, .kind = StringKind, .equal = NumbersEqual};

constexpr std::nullopt_t Absent = std::nullopt;

constexpr Verdict Met = {};
constexpr Verdict WrongKind = {FailureReason::WrongKind};
constexpr Verdict Unequal = {FailureReason::Unequal};

Verdict PersonalityLacks(std::string_view diagnostic = {}) {
  return {FailureReason::PersonalityLacksKey, diagnostic};
}

Verdict HardwareLacks(std::string_view diagnostic = {}) {
  return {FailureReason::HardwareLacksKey, diagnostic};
}

const PropertyValue* Pointer(const std::optional<PropertyValue>& value) {
  return value ? &*value : nullptr;
}

// The verdict, which is that of Test, too, whatever else the context is.
Verdict Matching(const Requirement& requirement, const std::optional<PropertyValue>& personality,
                 const std::optional<PropertyValue>& hardware) {
  const auto verdict = RequirementSetMatch(requirement, Pointer(personality), Pointer(hardware));
  const auto wanted = SingleEntry(requirement.key, personality);
  const auto found = SingleEntry(requirement.hardwareKey, hardware);
  EXPECT_EQ(Test(requirement, wanted, {found}), verdict);
  EXPECT_EQ(Test(requirement, wanted, {found, 3, true}), verdict);
  return verdict;
}

TEST(Verdict, EqualityIsThatOfTheFailureAndTheDiagnostic) {
  EXPECT_NE(Met, WrongKind);
  EXPECT_NE(WrongKind, Unequal);
  EXPECT_NE(WrongKind, (Verdict{FailureReason::WrongKind, "why"}));
}

TEST(RequirementSetMatch, AnOptionalKeyThatThePersonalityLacksSetsNoConstraint) {
  EXPECT_EQ(Matching(Optional, Absent, Absent), Met);
  EXPECT_EQ(Matching(Optional, Absent, 2), Met);
  EXPECT_EQ(Matching(Optional, Absent, "2"), Met);
  EXPECT_EQ(Matching(SilentOptional, Absent, Absent), Met);
}

TEST(RequirementSetMatch, ARequiredKeyThatThePersonalityLacksIsReported) {
  EXPECT_EQ(Matching(Required, Absent, Absent), PersonalityLacks(Missing));
  EXPECT_EQ(Matching(Required, Absent, 2), PersonalityLacks(Missing));
}

TEST(RequirementSetMatch, AKeyThatTheHardwareLacksIsReportedUnderBothPolicies) {
  EXPECT_EQ(Matching(Optional, 2, Absent), HardwareLacks(Missing));
  EXPECT_EQ(Matching(Required, 2, Absent), HardwareLacks(Missing));
}

TEST(RequirementSetMatch, AMissingKeyWithoutAMessageFailsSilently) {
  EXPECT_EQ(Matching(SilentRequired, Absent, 2), PersonalityLacks());
  EXPECT_EQ(Matching(SilentRequired, 2, Absent), HardwareLacks());
  EXPECT_EQ(Matching(SilentOptional, 2, Absent), HardwareLacks());
}

TEST(RequirementSetMatch, PresenceIsTestedBeforeTheKind) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, value, Absent), HardwareLacks(Missing)) << name;
    EXPECT_EQ(Matching(Required, value, Absent), HardwareLacks(Missing)) << name;
  }
}

TEST(RequirementSetMatch, ASingleNumberMatchesItsEqual) {
  EXPECT_EQ(Matching(Optional, 2, 2), Met);
  EXPECT_EQ(Matching(Required, 2, 2), Met);
  EXPECT_EQ(Matching(Optional, 2, 3), Unequal);
  EXPECT_EQ(Matching(Required, 2, 3), Unequal);
}

TEST(RequirementSetMatch, NumbersMatchAcrossKinds) {
  EXPECT_EQ(Matching(Optional, 2, 2.0), Met);
  EXPECT_EQ(Matching(Optional, 2.0, 2), Met);
  EXPECT_EQ(Matching(Optional, true, 1), Met);
  EXPECT_EQ(Matching(Optional, 1, true), Met);
  EXPECT_EQ(Matching(Optional, 0.0, false), Met);
  EXPECT_EQ(Matching(Optional, true, 2), Unequal);
  EXPECT_EQ(Matching(Optional, List({2.0}), 2), Met);
}

TEST(RequirementSetMatch, NumbersAreComparedExactly) {
  EXPECT_EQ(Matching(Optional, TwoTo53 + 1, 9007199254740992.0), Unequal);
  EXPECT_EQ(Matching(Optional, TwoTo53, 9007199254740992.0), Met);
  EXPECT_EQ(Matching(Optional, MaxUnsigned, 18446744073709551616.0), Unequal);
  EXPECT_EQ(Matching(Optional, -1, MaxUnsigned), Unequal);
  EXPECT_EQ(Matching(Optional, NotANumber, NotANumber), Unequal);
  EXPECT_EQ(Matching(Optional, List({NotANumber}), NotANumber), Unequal);
}

TEST(RequirementSetMatch, ASingleValueOfAnotherKindFailsSilently) {
  for (const auto& [name, value] : NonNumbers()) {
    if (value.AsArray()) continue;
    EXPECT_EQ(Matching(Optional, value, 5), WrongKind) << name;
    EXPECT_EQ(Matching(Required, value, 5), WrongKind) << name;
    EXPECT_EQ(Matching(Required, value, value), WrongKind) << name;
  }
}

TEST(RequirementSetMatch, AnArrayMatchesWhenOneElementDoesWhereverItIs) {
  EXPECT_EQ(Matching(Optional, List({2}), 2), Met);
  EXPECT_EQ(Matching(Optional, List({1, 2}), 2), Met);
  EXPECT_EQ(Matching(Optional, List({2, 1}), 2), Met);
  EXPECT_EQ(Matching(Required, List({1, 2, 3}), 2), Met);
  EXPECT_EQ(Matching(Optional, List({2, 2}), 2), Met);
  EXPECT_EQ(Matching(Optional, List({1, 3}), 2), Unequal);
}

TEST(RequirementSetMatch, AnArrayOfManyElementsIsSearchedToItsEnd) {
  std::vector<PropertyValue> many(100000, 1);
  EXPECT_EQ(Matching(Optional, Array(many), 2), Unequal);
  many.emplace_back(2);
  EXPECT_EQ(Matching(Optional, Array(many), 2), Met);
}

TEST(RequirementSetMatch, AnEmptyArrayNeverMatches) {
  EXPECT_EQ(Matching(Optional, Array(), 2), Unequal);
  EXPECT_EQ(Matching(Required, Array(), 2), Unequal);
  EXPECT_EQ(Matching(Optional, Array(), Array()), Unequal);
  EXPECT_EQ(Matching(Text, Array(), "2"), Unequal);
}

TEST(RequirementSetMatch, ElementsOfAnotherKindNeverMatch) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, List({value}), 5), Unequal) << name;
    EXPECT_EQ(Matching(Optional, List({value}), value), Unequal) << name;
  }
  EXPECT_EQ(Matching(Text, List({2, 2.0, true, Bytes("2"), List({"2"})}), "2"), Unequal);
}

TEST(RequirementSetMatch, ElementsOfAnotherKindDoNotAffectTheOthers) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, List({value, 2}), 2), Met) << name;
  }
  EXPECT_EQ(Matching(Text, List({2, "2", Array()}), "2"), Met);
}

TEST(RequirementSetMatch, ANestedArrayNeverMatches) {
  EXPECT_EQ(Matching(Optional, NestedArrays(2, 2), 2), Unequal);
  EXPECT_EQ(Matching(Optional, NestedArrays(2, 2), NestedArrays(1, 2)), Unequal);
}

TEST(RequirementSetMatch, HardwareOfAnotherKindFailsSilently) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, 5, value), Unequal) << name;
    EXPECT_EQ(Matching(Required, List({1, 5}), value), Unequal) << name;
  }
}

TEST(RequirementSetMatch, ASingleStringMatchesItsEqualWhereStringsAreExpected) {
  EXPECT_EQ(Matching(Text, "Grat", "Grat"), Met);
  EXPECT_EQ(Matching(Text, "", ""), Met);
  EXPECT_EQ(Matching(Text, "Grat", "grat"), Unequal);
  EXPECT_EQ(Matching(Text, List({"Fjell", "Grat"}), "Grat"), Met);
  EXPECT_EQ(Matching(Text, 2, 2), WrongKind);
  EXPECT_EQ(Matching(Text, "2", 2), Unequal);
}

TEST(RequirementSetMatch, KindNumberWithStringComparisonAcceptsOnlyAnArrayOfStrings) {
  EXPECT_EQ(Matching(NumberComparedAsText, "A1", "A1"), WrongKind);
  EXPECT_EQ(Matching(NumberComparedAsText, 2, 2), Unequal);
  EXPECT_EQ(Matching(NumberComparedAsText, 2, "2"), Unequal);
  EXPECT_EQ(Matching(NumberComparedAsText, List({2}), 2), Unequal);
  EXPECT_EQ(Matching(NumberComparedAsText, List({"A1"}), "A1"), Met);
}

TEST(RequirementSetMatch, KindAndComparisonAreSeparate) {
  EXPECT_EQ(Matching(TextComparedAsNumber, "2", 2), Unequal);
  EXPECT_EQ(Matching(TextComparedAsNumber, 2, 2), WrongKind);
  EXPECT_EQ(Matching(TextComparedAsNumber, List({2}), 2), Met);
}

TEST(RequirementSetMatch, ThePersonalitysValueIsTheFirstOperand) {
  constexpr Requirement greater = {.key = Key, .hardwareKey = Key, .equal = NumberGreater};
  EXPECT_EQ(Matching(greater, 3, 2), Met);
  EXPECT_EQ(Matching(greater, 1, 2), Unequal);
  EXPECT_EQ(Matching(greater, List({1, 3}), 2), Met);
  EXPECT_EQ(Matching(greater, List({1, 2}), 2), Unequal);
}

Verdict Tested(const Requirement& requirement, const Record& personality, const Record& hardware) {
  return Test(requirement, personality, {hardware});
}

TEST(RequirementSetMatch, KeysAreCaseSensitive) {
  EXPECT_EQ(Tested(Optional, Record{{"rid", 2}}, Record{{"RID", 3}}), Met);
  EXPECT_EQ(Tested(Optional, Record{{"RID", 2}}, Record{{"Rid", 2}}), HardwareLacks(Missing));
}

TEST(RequirementSetMatch, EachSideHasAKeyOfItsOwn) {
  constexpr Requirement crossed = {.key = "Wanted", .hardwareKey = "Found"};
  const Record personality = {{"Wanted", 1}, {"Found", 2}};
  EXPECT_EQ(Tested(crossed, personality, Record{{"Found", 1}, {"Wanted", 2}}), Met);
  EXPECT_EQ(Tested(crossed, personality, Record{{"Found", 2}, {"Wanted", 1}}), Unequal);
  EXPECT_EQ(Tested(crossed, personality, Record{{"Wanted", 1}}), HardwareLacks());
  EXPECT_EQ(Tested(crossed, Record{{"Found", 2}}, Record{{"Found", 2}}), Met);
}

}  // namespace
}  // namespace fernwick
