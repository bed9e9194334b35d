#include "personality/requirement_rules.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "personality/personality.h"
#include "registry/hardware_record.h"
#include "testing/dictionaries.h"
#include "testing/inputs/odd_values.h"
#include "testing/verdict.h"
#include "testing/version_check_bypass.h"

namespace fernwick {
namespace {

using testing::Applies;
using testing::Bytes;
using testing::DoesNotApply;
using testing::Holding;
using testing::NestedArrays;
using testing::NonNumbers;
using testing::Verdict;
using testing::VerdictOf;
using testing::VersionCheckBypass;
using testing::With;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t Greatest = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t Least = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t TwoTo53 = std::uint64_t{1} << 53;

// Equal, greater, less.
using Comparisons = std::array<bool, 3>;

Comparisons Compared(const PropertyValue& a, const PropertyValue& b) {
  return {NumbersEqual(a, b), NumberGreater(a, b), NumberLess(a, b)};
}

constexpr Comparisons NoneOfThem = {false, false, false};

// Ascending; the numbers of one group are equal.
const std::vector<Array> GroupsInOrder = {
    {-Infinity},
    {-9223372036854777856.0},
    {Least, -9223372036854775808.0},
    {-2},
    {-1, -1.0},
    {-0.5},
    {0, 0.0, -0.0, false},
    {0.5},
    {1, 1.0, true},
    {2, 2.0},
    {23},
    {23.1},
    {41.05},
    {41.050000000999994},
    {TwoTo53, 9007199254740992.0},
    {TwoTo53 + 1},
    {Greatest},
    {18446744073709551616.0},
    {Infinity},
};

TEST(Comparisons, NumbersOfEveryKindCompareByExactValue) {
  for (std::size_t i = 0; i < GroupsInOrder.size(); ++i) {
    for (std::size_t j = 0; j < GroupsInOrder.size(); ++j) {
      for (const auto& a : GroupsInOrder[i]) {
        for (const auto& b : GroupsInOrder[j]) {
          EXPECT_EQ(Compared(a, b), (Comparisons{i == j, i > j, i < j}))
              << ::testing::PrintToString(a) << ::testing::PrintToString(b);
        }
      }
    }
  }
}

TEST(Comparisons, NanIsUnorderedWithEveryNumber) {
  EXPECT_EQ(Compared(NotANumber, NotANumber), NoneOfThem);
  for (const auto& group : GroupsInOrder) {
    EXPECT_EQ(Compared(NotANumber, group.front()), NoneOfThem);
    EXPECT_EQ(Compared(group.front(), NotANumber), NoneOfThem);
  }
}

TEST(Comparisons, AnOperandThatIsNoNumberMakesEachFalse) {
  for (const auto& [name, other] : NonNumbers()) {
    for (const PropertyValue& number : Array{5, 5.0, true, -1, 9}) {
      EXPECT_EQ(Compared(other, number), NoneOfThem) << name;
      EXPECT_EQ(Compared(number, other), NoneOfThem) << name;
    }
    EXPECT_EQ(Compared(other, other), NoneOfThem) << name;
  }
}

TEST(StringsEqual, ComparesTheExactCharacters) {
  EXPECT_TRUE(StringsEqual("Ridge", "Ridge"));
  EXPECT_TRUE(StringsEqual("", ""));
  EXPECT_TRUE(StringsEqual("Grat \xE2\x80\x93 7", "Grat \xE2\x80\x93 7"));
  EXPECT_FALSE(StringsEqual("Ridge", "ridge"));
  EXPECT_FALSE(StringsEqual("Ridge", "Ridge "));
  EXPECT_FALSE(StringsEqual("Ridge", "Rid"));
  EXPECT_FALSE(StringsEqual("Rid", "Ridge"));
  EXPECT_FALSE(StringsEqual("", "Ridge"));
}

TEST(StringsEqual, AnOperandThatIsNoStringMakesItFalse) {
  for (const PropertyValue& other :
       Array{2, 2.0, true, Bytes("2"), Array{"2"}, Dictionary{{"2", "2"}}, Date{2}}) {
    EXPECT_FALSE(StringsEqual(other, "2")) << ::testing::PrintToString(other);
    EXPECT_FALSE(StringsEqual("2", other)) << ::testing::PrintToString(other);
    EXPECT_FALSE(StringsEqual(other, other)) << ::testing::PrintToString(other);
  }
}

constexpr char Key[] = "RID";
constexpr char Missing[] = "** Missing\n";

constexpr RequirementSet Optional = {.key = Key, .missingKeyMessage = Missing};
constexpr RequirementSet Required = {
    .key = Key, .presence = KeyPresence::RequiredKey, .missingKeyMessage = Missing};
constexpr RequirementSet SilentOptional = {.key = Key};
constexpr RequirementSet SilentRequired = {.key = Key, .presence = KeyPresence::RequiredKey};
constexpr RequirementSet Text = {
    .key = Key, .kind = SingleValueKind::StringKind, .equal = StringsEqual};
constexpr RequirementSet NumberComparedAsText = {
    .key = Key, .kind = SingleValueKind::NumberKind, .equal = StringsEqual};
constexpr RequirementSet TextComparedAsNumber = {
    .key = Key, .kind = SingleValueKind::StringKind, .equal = NumbersEqual};

constexpr std::nullopt_t Absent = std::nullopt;

Verdict Matching(const RequirementSet& requirement, std::optional<PropertyValue> personality,
                 std::optional<PropertyValue> hardware) {
  return VerdictOf(RequirementSetMatch, Holding(Key, std::move(personality)),
                   Holding(Key, std::move(hardware)), requirement);
}

TEST(RequirementSetMatch, AnOptionalKeyThatThePersonalityLacksSetsNoConstraint) {
  EXPECT_EQ(Matching(Optional, Absent, Absent), Applies());
  EXPECT_EQ(Matching(Optional, Absent, 2), Applies());
  EXPECT_EQ(Matching(Optional, Absent, "2"), Applies());
  EXPECT_EQ(Matching(SilentOptional, Absent, Absent), Applies());
}

TEST(RequirementSetMatch, ARequiredKeyThatThePersonalityLacksIsTold) {
  EXPECT_EQ(Matching(Required, Absent, Absent), DoesNotApply(Missing));
  EXPECT_EQ(Matching(Required, Absent, 2), DoesNotApply(Missing));
}

TEST(RequirementSetMatch, AKeyThatTheHardwareLacksIsToldUnderBothPolicies) {
  EXPECT_EQ(Matching(Optional, 2, Absent), DoesNotApply(Missing));
  EXPECT_EQ(Matching(Required, 2, Absent), DoesNotApply(Missing));
}

TEST(RequirementSetMatch, AMissingKeyWithoutAMessageFailsSilently) {
  EXPECT_EQ(Matching(SilentRequired, Absent, 2), DoesNotApply());
  EXPECT_EQ(Matching(SilentRequired, 2, Absent), DoesNotApply());
  EXPECT_EQ(Matching(SilentOptional, 2, Absent), DoesNotApply());
}

TEST(RequirementSetMatch, PresenceIsTestedBeforeTheKind) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, value, Absent), DoesNotApply(Missing)) << name;
    EXPECT_EQ(Matching(Required, value, Absent), DoesNotApply(Missing)) << name;
  }
}

TEST(RequirementSetMatch, ASingleNumberMatchesItsEqual) {
  EXPECT_EQ(Matching(Optional, 2, 2), Applies());
  EXPECT_EQ(Matching(Required, 2, 2), Applies());
  EXPECT_EQ(Matching(Optional, 2, 3), DoesNotApply());
  EXPECT_EQ(Matching(Required, 2, 3), DoesNotApply());
}

TEST(RequirementSetMatch, NumbersMatchAcrossKinds) {
  EXPECT_EQ(Matching(Optional, 2, 2.0), Applies());
  EXPECT_EQ(Matching(Optional, 2.0, 2), Applies());
  EXPECT_EQ(Matching(Optional, true, 1), Applies());
  EXPECT_EQ(Matching(Optional, 1, true), Applies());
  EXPECT_EQ(Matching(Optional, 0.0, false), Applies());
  EXPECT_EQ(Matching(Optional, true, 2), DoesNotApply());
  EXPECT_EQ(Matching(Optional, Array{2.0}, 2), Applies());
}

TEST(RequirementSetMatch, NumbersAreComparedExactly) {
  EXPECT_EQ(Matching(Optional, TwoTo53 + 1, 9007199254740992.0), DoesNotApply());
  EXPECT_EQ(Matching(Optional, TwoTo53, 9007199254740992.0), Applies());
  EXPECT_EQ(Matching(Optional, Greatest, 18446744073709551616.0), DoesNotApply());
  EXPECT_EQ(Matching(Optional, -1, Greatest), DoesNotApply());
  EXPECT_EQ(Matching(Optional, NotANumber, NotANumber), DoesNotApply());
  EXPECT_EQ(Matching(Optional, Array{NotANumber}, NotANumber), DoesNotApply());
}

TEST(RequirementSetMatch, ASingleValueOfAnotherKindFailsSilently) {
  for (const auto& [name, value] : NonNumbers()) {
    if (value.AsArray() != nullptr) continue;
    EXPECT_EQ(Matching(Optional, value, 5), DoesNotApply()) << name;
    EXPECT_EQ(Matching(Required, value, 5), DoesNotApply()) << name;
    EXPECT_EQ(Matching(Required, value, value), DoesNotApply()) << name;
  }
}

TEST(RequirementSetMatch, AnArrayMatchesWhenOneElementDoesWhereverItStands) {
  EXPECT_EQ(Matching(Optional, Array{2}, 2), Applies());
  EXPECT_EQ(Matching(Optional, Array{1, 2}, 2), Applies());
  EXPECT_EQ(Matching(Optional, Array{2, 1}, 2), Applies());
  EXPECT_EQ(Matching(Required, Array{1, 2, 3}, 2), Applies());
  EXPECT_EQ(Matching(Optional, Array{2, 2}, 2), Applies());
  EXPECT_EQ(Matching(Optional, Array{1, 3}, 2), DoesNotApply());
}

TEST(RequirementSetMatch, AnArrayOfManyElementsIsSearchedToItsEnd) {
  Array many(100000, PropertyValue(1));
  EXPECT_EQ(Matching(Optional, many, 2), DoesNotApply());
  many.emplace_back(2);
  EXPECT_EQ(Matching(Optional, many, 2), Applies());
}

TEST(RequirementSetMatch, AnEmptyArrayNeverMatches) {
  EXPECT_EQ(Matching(Optional, Array{}, 2), DoesNotApply());
  EXPECT_EQ(Matching(Required, Array{}, 2), DoesNotApply());
  EXPECT_EQ(Matching(Optional, Array{}, Array{}), DoesNotApply());
  EXPECT_EQ(Matching(Text, Array{}, "2"), DoesNotApply());
}

TEST(RequirementSetMatch, ElementsOfAnotherKindNeverMatch) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, Array{value}, 5), DoesNotApply()) << name;
    EXPECT_EQ(Matching(Optional, Array{value}, value), DoesNotApply()) << name;
  }
  EXPECT_EQ(Matching(Text, Array{2, 2.0, true, Bytes("2"), Array{"2"}}, "2"), DoesNotApply());
}

TEST(RequirementSetMatch, ElementsOfAnotherKindDoNotSpoilTheOthers) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, Array{value, 2}, 2), Applies()) << name;
  }
  EXPECT_EQ(Matching(Text, Array{2, "2", Array{}}, "2"), Applies());
}

TEST(RequirementSetMatch, ANestedArrayNeverMatches) {
  EXPECT_EQ(Matching(Optional, NestedArrays(2, 2), 2), DoesNotApply());
  EXPECT_EQ(Matching(Optional, NestedArrays(2, 2), NestedArrays(1, 2)), DoesNotApply());
}

TEST(RequirementSetMatch, HardwareOfAnotherKindFailsSilently) {
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(Matching(Optional, 5, value), DoesNotApply()) << name;
    EXPECT_EQ(Matching(Required, Array{1, 5}, value), DoesNotApply()) << name;
  }
}

TEST(RequirementSetMatch, ASingleStringMatchesItsEqualWhereStringsAreExpected) {
  EXPECT_EQ(Matching(Text, "Grat", "Grat"), Applies());
  EXPECT_EQ(Matching(Text, "", ""), Applies());
  EXPECT_EQ(Matching(Text, "Grat", "grat"), DoesNotApply());
  EXPECT_EQ(Matching(Text, Array{"Fjell", "Grat"}, "Grat"), Applies());
  EXPECT_EQ(Matching(Text, 2, 2), DoesNotApply());
  EXPECT_EQ(Matching(Text, "2", 2), DoesNotApply());
}

TEST(RequirementSetMatch, KindNumberWithStringComparisonTakesNothingButAnArrayOfStrings) {
  EXPECT_EQ(Matching(NumberComparedAsText, "A1", "A1"), DoesNotApply());
  EXPECT_EQ(Matching(NumberComparedAsText, 2, 2), DoesNotApply());
  EXPECT_EQ(Matching(NumberComparedAsText, 2, "2"), DoesNotApply());
  EXPECT_EQ(Matching(NumberComparedAsText, Array{2}, 2), DoesNotApply());
  EXPECT_EQ(Matching(NumberComparedAsText, Array{"A1"}, "A1"), Applies());
}

TEST(RequirementSetMatch, KindAndComparisonAreSeparate) {
  EXPECT_EQ(Matching(TextComparedAsNumber, "2", 2), DoesNotApply());
  EXPECT_EQ(Matching(TextComparedAsNumber, 2, 2), DoesNotApply());
  EXPECT_EQ(Matching(TextComparedAsNumber, Array{2}, 2), Applies());
}

TEST(RequirementSetMatch, ThePersonalitysValueIsTheFirstOperand) {
  constexpr RequirementSet greater = {.key = Key, .equal = NumberGreater};
  EXPECT_EQ(Matching(greater, 3, 2), Applies());
  EXPECT_EQ(Matching(greater, 1, 2), DoesNotApply());
  EXPECT_EQ(Matching(greater, Array{1, 3}, 2), Applies());
  EXPECT_EQ(Matching(greater, Array{1, 2}, 2), DoesNotApply());
}

TEST(RequirementSetMatch, KeysAreCaseSensitive) {
  EXPECT_EQ(
      VerdictOf(RequirementSetMatch, Personality{{"rid", 2}}, HardwareRecord{{"RID", 3}}, Optional),
      Applies());
  EXPECT_EQ(
      VerdictOf(RequirementSetMatch, Personality{{"RID", 2}}, HardwareRecord{{"Rid", 2}}, Optional),
      DoesNotApply(Missing));
}

TEST(MatchesAll, HoldsForNoRequirements) {
  EXPECT_EQ(
      VerdictOf(MatchesAll, Personality{}, HardwareRecord{}, std::span<const RequirementSet>{}),
      Applies());
}

TEST(MatchesAll, StopsAtTheFirstThatDoesNotMatch) {
  constexpr std::array<RequirementSet, 3> requirements = {{
      {.key = "RID"},
      {.key = "Port Address", .missingKeyMessage = "** Second\n"},
      {.key = "Ridge UID", .missingKeyMessage = "** Third\n"},
  }};
  const Personality personality = {{"RID", 1}, {"Port Address", 2}, {"Ridge UID", 3}};
  EXPECT_EQ(VerdictOf(MatchesAll, personality, HardwareRecord{{"RID", 9}}, requirements),
            DoesNotApply());
  EXPECT_EQ(VerdictOf(MatchesAll, personality, HardwareRecord{{"RID", 1}}, requirements),
            DoesNotApply("** Second\n"));
  EXPECT_EQ(VerdictOf(MatchesAll, personality, HardwareRecord{{"RID", 1}, {"Port Address", 2}},
                      requirements),
            DoesNotApply("** Third\n"));
  EXPECT_EQ(VerdictOf(MatchesAll, personality, personality, requirements), Applies());
}

constexpr char NoVersion[] = "** No current firmware version?\n";
constexpr char BadMinimum[] = "** minversion bad object type in personality\n";
constexpr char MinimumNotMet[] = "** Min firmware version not met.  Aborting\n";
constexpr char BadMaximum[] = "** maxversion bad object type in personality\n";
constexpr char MaximumNotMet[] = "** Max firmware version not met.  Aborting\n";

Verdict Window(const Personality& personality, const HardwareRecord& hardware,
               EngineeringGate gate = EngineeringGate::On) {
  return VerdictOf(FirmwareVersionWindow, personality, hardware, gate);
}

// Whether firmware of a version may be installed over another where nothing else is asked.
Verdict Replacing(std::optional<PropertyValue> installed, std::optional<PropertyValue> offered) {
  return Window(Holding("Version", std::move(offered)), Holding("Version", std::move(installed)));
}

// The window of 100 over the installed version with these bounds.
Verdict Bounded(const PropertyValue& installed, const Dictionary& bounds) {
  return Window(With({{"Version", 100}}, bounds), {{"Version", installed}});
}

TEST(FirmwareVersionWindow, TakesOnlyAStrictlyNewerVersion) {
  EXPECT_EQ(Replacing(4, 5), Applies());
  EXPECT_EQ(Replacing(5, 5), DoesNotApply());
  EXPECT_EQ(Replacing(6, 5), DoesNotApply());
  EXPECT_EQ(Replacing(-1, 0), Applies());
  EXPECT_EQ(Replacing(-1, Greatest), Applies());
  EXPECT_EQ(Replacing(Greatest, -1), DoesNotApply());
}

TEST(FirmwareVersionWindow, ComparesVersionsExactlyAcrossKinds) {
  EXPECT_EQ(Replacing(23, 23.1), Applies());
  EXPECT_EQ(Replacing(5.0, 5), DoesNotApply());
  EXPECT_EQ(Replacing(41.05, 41.050000000999994), Applies());
  EXPECT_EQ(Replacing(41.050000000999994, 41.05), DoesNotApply());
  EXPECT_EQ(Replacing(41.050000000999994, 41.06), Applies());
  EXPECT_EQ(Replacing(9007199254740992.0, TwoTo53 + 1), Applies());
  EXPECT_EQ(Replacing(TwoTo53 + 1, 9007199254740992.0), DoesNotApply());
  EXPECT_EQ(Replacing(false, true), Applies());
  EXPECT_EQ(Replacing(true, 1), DoesNotApply());
}

TEST(FirmwareVersionWindow, NanIsNeitherNewerNorOlder) {
  EXPECT_EQ(Replacing(NotANumber, 5), DoesNotApply());
  EXPECT_EQ(Replacing(5, NotANumber), DoesNotApply());
  EXPECT_EQ(Replacing(NotANumber, NotANumber), DoesNotApply());
}

TEST(FirmwareVersionWindow, AnAbsentVersionFailsSilently) {
  EXPECT_EQ(Replacing(4, Absent), DoesNotApply());
  EXPECT_EQ(Replacing(Absent, 5), DoesNotApply());
  EXPECT_EQ(Replacing(Absent, Absent), DoesNotApply());
}

TEST(FirmwareVersionWindow, AVersionThatIsNoNumberFailsSilently) {
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(Replacing(1, version), DoesNotApply()) << name;
    EXPECT_EQ(Replacing(version, 3), DoesNotApply()) << name;
  }
  EXPECT_EQ(Replacing(4, Array{5}), DoesNotApply());
}

const HardwareRecord Version4 = {{"Version", 4}};
const Personality Version5 = {{"Version", 5}};

TEST(FirmwareVersionWindow, EngineeringFirmwareIsRejectedOnlyByTheGate) {
  for (const PropertyValue& engineering : Array{64, 128, 192, 1, -1, Greatest, 1.0, 64.5, true}) {
    const auto hardware = With(Version4, {{"Engineering Version", engineering}});
    EXPECT_EQ(Window(Version5, hardware, EngineeringGate::On), DoesNotApply())
        << ::testing::PrintToString(engineering);
    EXPECT_EQ(Window(Version5, hardware, EngineeringGate::Off), Applies())
        << ::testing::PrintToString(engineering);
  }
}

TEST(FirmwareVersionWindow, EngineeringVersionZeroIsNoObstacle) {
  for (const PropertyValue& engineering : Array{0, 0.0, false, 0.5, -0.5, NotANumber}) {
    const auto hardware = With(Version4, {{"Engineering Version", engineering}});
    EXPECT_EQ(Window(Version5, hardware, EngineeringGate::On), Applies())
        << ::testing::PrintToString(engineering);
  }
  EXPECT_EQ(Window(Version5, Version4, EngineeringGate::On), Applies());
}

TEST(FirmwareVersionWindow, ThePersonalitysEngineeringVersionIsNotRead) {
  EXPECT_EQ(Window(With(Version5, {{"Engineering Version", 64}}), Version4), Applies());
}

TEST(FirmwareVersionWindow, BypassedTakesAnyVersion) {
  const VersionCheckBypass bypass;
  EXPECT_EQ(Replacing(4, 5), Applies());
  EXPECT_EQ(Replacing(5, 5), Applies());
  EXPECT_EQ(Replacing(6, 5), Applies());
  EXPECT_EQ(Replacing(4, Absent), Applies());
  EXPECT_EQ(Replacing(NotANumber, NotANumber), Applies());
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(Replacing(1, version), Applies()) << name;
    EXPECT_EQ(Replacing(version, 3), Applies()) << name;
  }
}

TEST(FirmwareVersionWindow, BypassedDoesNotMindEngineeringFirmware) {
  const VersionCheckBypass bypass;
  const auto hardware = With(Version4, {{"Engineering Version", 64}});
  EXPECT_EQ(Window(Version5, hardware, EngineeringGate::On), Applies());
  EXPECT_EQ(Window({}, hardware, EngineeringGate::On), Applies());
}

TEST(FirmwareVersionWindow, BypassedStillHoldsTheBounds) {
  const VersionCheckBypass bypass;
  EXPECT_EQ(Window({{"Existing Min Version", 5}}, Version4), DoesNotApply(MinimumNotMet));
  EXPECT_EQ(Window({{"Existing Max Version", 3}}, Version4), DoesNotApply(MaximumNotMet));
  EXPECT_EQ(Window({{"Existing Min Version", 4}, {"Existing Max Version", 4}}, Version4),
            Applies());
}

TEST(FirmwareVersionWindow, BypassedWithoutAnInstalledVersionSatisfiesItWhateverTheBounds) {
  const VersionCheckBypass bypass;
  EXPECT_EQ(Window({}, {}), Applies(NoVersion));
  EXPECT_EQ(Window(Version5, {}), Applies(NoVersion));
  EXPECT_EQ(Window({{"Existing Min Version", 9}, {"Existing Max Version", 1}}, {}),
            Applies(NoVersion));
  EXPECT_EQ(Window({{"Existing Min Version", "9"}, {"Existing Max Version", Array{}}}, {}),
            Applies(NoVersion));
}

TEST(FirmwareVersionWindow, BypassedWithAnInstalledVersionThatIsNoNumberLiesWithinEveryBound) {
  const VersionCheckBypass bypass;
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(
        Window({{"Existing Min Version", 9}, {"Existing Max Version", 1}}, {{"Version", version}}),
        Applies())
        << name;
  }
  EXPECT_EQ(Window({{"Existing Min Version", "9"}}, {{"Version", "4"}}), DoesNotApply(BadMinimum));
}

TEST(FirmwareVersionWindow, BothBoundsAreInclusive) {
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 5}}), Applies());
  EXPECT_EQ(Bounded(5, {{"Existing Max Version", 5}}), Applies());
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 5}, {"Existing Max Version", 5}}), Applies());
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 5.0}, {"Existing Max Version", 5.0}}), Applies());
}

TEST(FirmwareVersionWindow, AVersionBelowTheMinimumIsTold) {
  EXPECT_EQ(Bounded(4, {{"Existing Min Version", 5}}), DoesNotApply(MinimumNotMet));
  EXPECT_EQ(Bounded(4.999, {{"Existing Min Version", 5}}), DoesNotApply(MinimumNotMet));
  EXPECT_EQ(Bounded(-1, {{"Existing Min Version", false}}), DoesNotApply(MinimumNotMet));
}

TEST(FirmwareVersionWindow, AVersionAboveTheMaximumIsTold) {
  EXPECT_EQ(Bounded(6, {{"Existing Max Version", 5}}), DoesNotApply(MaximumNotMet));
  EXPECT_EQ(Bounded(5.5, {{"Existing Max Version", 5}}), DoesNotApply(MaximumNotMet));
  EXPECT_EQ(Bounded(41.050000000999994, {{"Existing Max Version", 41.05}}),
            DoesNotApply(MaximumNotMet));
}

TEST(FirmwareVersionWindow, BoundsAreComparedExactly) {
  const Personality newest = {{"Version", Greatest}};
  EXPECT_EQ(Window(With(newest, {{"Existing Max Version", 9007199254740992.0}}),
                   {{"Version", TwoTo53 + 1}}),
            DoesNotApply(MaximumNotMet));
  EXPECT_EQ(Window(With(newest, {{"Existing Min Version", TwoTo53 + 1}}),
                   {{"Version", 9007199254740992.0}}),
            DoesNotApply(MinimumNotMet));
}

TEST(FirmwareVersionWindow, ABoundThatIsNanExcludesNothing) {
  EXPECT_EQ(
      Bounded(5, {{"Existing Min Version", NotANumber}, {"Existing Max Version", NotANumber}}),
      Applies());
}

TEST(FirmwareVersionWindow, AMinimumThatIsNoNumberIsTold) {
  for (const auto& [name, bound] : NonNumbers()) {
    EXPECT_EQ(Bounded(5, {{"Existing Min Version", bound}}), DoesNotApply(BadMinimum)) << name;
  }
}

TEST(FirmwareVersionWindow, AMaximumThatIsNoNumberIsTold) {
  for (const auto& [name, bound] : NonNumbers()) {
    EXPECT_EQ(Bounded(5, {{"Existing Max Version", bound}}), DoesNotApply(BadMaximum)) << name;
  }
}

TEST(FirmwareVersionWindow, TellsNothingOfTheMaximumWhenTheMinimumFails) {
  EXPECT_EQ(Bounded(5, {{"Existing Max Version", "1"}, {"Existing Min Version", "9"}}),
            DoesNotApply(BadMinimum));
  EXPECT_EQ(Bounded(5, {{"Existing Max Version", 4}, {"Existing Min Version", "9"}}),
            DoesNotApply(BadMinimum));
  EXPECT_EQ(Bounded(5, {{"Existing Max Version", 4}, {"Existing Min Version", 6}}),
            DoesNotApply(MinimumNotMet));
  EXPECT_EQ(Bounded(5, {{"Existing Max Version", "9"}, {"Existing Min Version", 6}}),
            DoesNotApply(MinimumNotMet));
}

TEST(FirmwareVersionWindow, AMinimumThatIsMetLeavesTheMaximumToDecide) {
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 4}, {"Existing Max Version", "9"}}),
            DoesNotApply(BadMaximum));
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 4}, {"Existing Max Version", 4}}),
            DoesNotApply(MaximumNotMet));
}

TEST(FirmwareVersionWindow, AVersionThatIsNotNewerFailsSilentlyWhateverTheBounds) {
  EXPECT_EQ(Window({{"Version", 5}, {"Existing Min Version", 9}}, {{"Version", 5}}),
            DoesNotApply());
  EXPECT_EQ(Window({{"Version", 5}, {"Existing Min Version", "9"}}, {{"Version", 5}}),
            DoesNotApply());
  EXPECT_EQ(Window({{"Version", 5}, {"Existing Max Version", "9"}}, {}), DoesNotApply());
  EXPECT_EQ(Window({{"Version", 5}, {"Existing Max Version", 1}},
                   {{"Version", 4}, {"Engineering Version", 64}}),
            DoesNotApply());
}

TEST(FirmwareVersionWindow, TheHardwaresOwnBoundsAreNotRead) {
  EXPECT_EQ(Window(Version5,
                   With(Version4, {{"Existing Min Version", 9}, {"Existing Max Version", "1"}})),
            Applies());
}

}  // namespace
}  // namespace fernwick
