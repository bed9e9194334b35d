#include "lab/explain/failed_requirement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "testing/dictionaries.h"
#include "testing/inputs/fitting_personality.h"
#include "testing/property_values.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

using testing::FittingPersonality;
using testing::FullController;
using testing::List;
using testing::SingleEntry;
using testing::With;
using testing::Without;
using Value = std::optional<PropertyValue>;

constexpr FileLocation Location = {9, 4, 0};

std::string TextOf(std::string_view key, FailureReason reason, Value wanted, Value found) {
  const Requirement requirement = {.key = key, .hardwareKey = key};
  return FailureText({&requirement, reason, wanted, found}, Location);
}

TEST(FailureText, DescribesEveryReason) {
  EXPECT_EQ(TextOf("RID", FailureReason::PersonalityLacksKey, {}, 10),
            "is missing; the controller has 10 (0xA)");
  EXPECT_EQ(TextOf("Version", FailureReason::PersonalityLacksKey, {}, {}),
            "is missing; the controller has none either");
  EXPECT_EQ(TextOf("Port Address", FailureReason::HardwareLacksKey, List({1, 2}), {}),
            "wants one of [1, 2] at 9:4, but the controller has none");
  EXPECT_EQ(TextOf("Port UUID", FailureReason::WrongKind, "A0", "A0"),
            "\"A0\" at 9:4 is not an array of strings; the controller has \"A0\"");
  EXPECT_EQ(TextOf("Port Address", FailureReason::Unequal, 1, 2), "wants 1 at 9:4, finds 2");
  EXPECT_EQ(TextOf("Version", FailureReason::NotNewer, 41, 41.5),
            "41 at 9:4 is not newer than the installed 41.5");
  EXPECT_EQ(TextOf("Version", FailureReason::NotNewer, "42", 41),
            "\"42\" at 9:4 is not a number and not newer than the installed 41");
  EXPECT_EQ(TextOf("Version", FailureReason::EngineeringFirmware, 42, 64),
            "wants 42 at 9:4, but engineering firmware is installed, marked 64");
  EXPECT_EQ(TextOf("Version", FailureReason::EngineeringFirmware, {}, 64),
            "engineering firmware is installed, marked 64");
  EXPECT_EQ(TextOf("Existing Min Version", FailureReason::AboveInstalled, 42, 41),
            "42 at 9:4 is above the installed 41");
  EXPECT_EQ(TextOf("Existing Max Version", FailureReason::BelowInstalled, 40, 41),
            "40 at 9:4 is below the installed 41");
  EXPECT_EQ(TextOf("MinBoardRevision", FailureReason::AboveBoardRevision, 4, 3),
            "4 at 9:4 is above the board's revision 3");
  EXPECT_EQ(TextOf("MaxBoardRevision", FailureReason::BelowBoardRevision, 2, 3),
            "2 at 9:4 is below the board's revision 3");
}

TEST(FailureText, OfABoundThatIsNoNumberHasTheBoardsRevision) {
  const Requirement requirement = {.key = "MinBoardRevision", .hardwareKey = ""};
  EXPECT_EQ(FailureText({&requirement, FailureReason::WrongKind, "4", 3}, Location),
            "\"4\" at 9:4 is not a number; the board's revision is 3");
}

TEST(FailureText, OfABoundThatNoVersionMeetsSaysSo) {
  EXPECT_EQ(TextOf("Existing Min Version", FailureReason::AboveInstalled, 42, {}),
            "42 at 9:4 is above every version that the controller could have and the other "
            "requirements allow");
  EXPECT_EQ(TextOf("Existing Max Version", FailureReason::BelowInstalled, -1, {}),
            "-1 at 9:4 is below every version that the controller could have and the other "
            "requirements allow");
  EXPECT_EQ(TextOf("Existing Max Version", FailureReason::WrongKind, "1", {}),
            "\"1\" at 9:4 is not a number; the controller has none");
}

TEST(AtLocation, IsEmptyForAnUnknownLocation) {
  EXPECT_EQ(AtLocation(Location), " at 9:4");
  EXPECT_EQ(AtLocation(FileLocation{0, 0, 12}), " at byte 12");
  EXPECT_EQ(AtLocation(std::nullopt), "");
}

// "TYPE: KEY WANTED, HARDWARE KEY FOUND" of each that a port of a board of revision 2 fails.
std::vector<std::string> FailuresOf(TypeSet type, const Record& personality,
                                    const Record& controller, bool bypassVersionCheck = false) {
  std::vector<std::string> texts;
  const auto text = [](const Value& value) { return value ? DumpText(*value) : "-"; };
  for (const auto& [requirement, reason, wanted, found] :
       FailedRequirements(type, personality, {controller, 2, bypassVersionCheck})) {
    texts.push_back(std::string(requirement->type) + ": " + std::string(requirement->key) + " " +
                    text(wanted) + ", " + std::string(requirement->hardwareKey) + " " +
                    text(found));
  }
  return texts;
}

using Texts = std::vector<std::string>;

TEST(FailedRequirements, AreNoneOfAPersonalityThatFits) {
  for (const auto type :
       {Types::LegacyUsbc, Types::Usbc, Types::LegacyThunderbolt, Types::Thunderbolt}) {
    EXPECT_EQ(FailuresOf(type, FittingPersonality, FullController), Texts{});
  }
}

TEST(FailedRequirements, HaveBothSides) {
  EXPECT_EQ(FailuresOf(Types::Usbc, With(FittingPersonality, {{"RID", 3}}), FullController),
            Texts{"USBC: RID 3, RID 2"});
  EXPECT_EQ(FailuresOf(Types::Usbc, FittingPersonality, Without(FullController, "RID")),
            Texts{"USBC: RID 2, RID -"});
  const auto update = Without(FittingPersonality, "Port Silicon Vendor ID");
  EXPECT_EQ(FailuresOf(Types::Usbc, update, FullController),
            Texts{"USBC: Port Silicon Vendor ID -, Port Silicon Vendor ID 2"});
}

TEST(FailedRequirements, HaveTheHardwaresValueFromWhereItIsTested) {
  const auto engineering = With(FullController, {{"Engineering Version", 64}});
  EXPECT_EQ(FailuresOf(Types::LegacyUsbc, FittingPersonality, engineering),
            Texts{"LegacyUSBC: Version 3, Engineering Version 64"});
  EXPECT_EQ(
      FailuresOf(Types::Usbc,
                 With(FittingPersonality, {{"MinBoardRevision", 4}, {"MaxBoardRevision", "1"}}),
                 FullController),
      (Texts{"USBC: MinBoardRevision 4,  2", "USBC: MaxBoardRevision \"1\",  2"}));
}

TEST(FailedRequirements, AreAllInTheOrderOfTheTable) {
  const auto update = With(FittingPersonality, {{"Firmware Mode", false},
                                                {"Ridge UID", 1},
                                                {"Port UUID", List({})},
                                                {"RID", 0},
                                                {"Port Address", 1},
                                                {"Existing Max Version", 1},
                                                {"Version", 2}});
  EXPECT_EQ(
      FailuresOf(Types::Thunderbolt, update, FullController),
      (Texts{"LegacyUSBC: Version 2, Version 2", "LegacyUSBC: Existing Max Version 1, Version 2",
             "LegacyUSBC: Port Address 1, Port Address 2", "USBC: RID 0, RID 2",
             "USBC: Port UUID (), Port UUID \"b0A1\"",
             "LegacyThunderbolt: Ridge UID 1, Ridge UID 2",
             "Thunderbolt: Firmware Mode false, Firmware Mode true"}));
}

// The table of "Thunderbolt" tests the version window and "RID" twice, the first time as those of
// other types.
TEST(FailedRequirements, AreThereOnceForEachReason) {
  const auto update = With(FittingPersonality, {{"RID", 0}});
  EXPECT_EQ(FailuresOf(Types::Thunderbolt, update, FullController), Texts{"USBC: RID 0, RID 2"});
  EXPECT_EQ(FailuresOf(Types::LegacyThunderbolt, update, FullController),
            Texts{"LegacyThunderbolt: RID 0, RID 2"});
  EXPECT_EQ(
      FailuresOf(Types::LegacyUsbc, With(update, {{"Version", 2}}),
                 With(FullController, {{"Engineering Version", 64}})),
      (Texts{"LegacyUSBC: Version 2, Version 2", "LegacyUSBC: Version 2, Engineering Version 64"}));
}

TEST(FailedRequirements, LeaveOutAVersionThatIsBypassed) {
  EXPECT_EQ(FailuresOf(Types::Thunderbolt, Without(FittingPersonality, "Version"),
                       With(FullController, {{"Engineering Version", 64}}), true),
            Texts{});
}

const Record Port = {{"Port Address", 2}};
const Record Ridge = {{"Ridge UID", 2}};

// The keys that a "LegacyUSBC" personality with these versions fails on a port without a version.
std::vector<std::string> FailedKeys(const Record& versions, const Record& controller = Port) {
  std::vector<std::string> keys;
  for (const auto& failed : FailedRequirements(Types::LegacyUsbc, versions, {controller})) {
    keys.emplace_back(failed.requirement->key);
  }
  return keys;
}

TEST(FailedRequirements, WithoutAVersionHaveTheBoundsThatNoVersionMeets) {
  const Record plain = {{"Version", 5}};
  const auto with = [&](const Record& bounds) { return FailedKeys(With(plain, bounds)); };
  EXPECT_EQ(FailedKeys(plain), Texts{"Version"});
  EXPECT_EQ(with({{"Existing Min Version", 4}, {"Existing Max Version", 4}}), Texts{"Version"});
  EXPECT_EQ(with({{"Existing Min Version", "4"}}), (Texts{"Version", "Existing Min Version"}));
  EXPECT_EQ(with({{"Existing Max Version", List({})}}), (Texts{"Version", "Existing Max Version"}));
  EXPECT_EQ(with({{"Existing Min Version", 5}}), (Texts{"Version", "Existing Min Version"}));
  EXPECT_EQ(with({{"Existing Max Version", -1}}), (Texts{"Version", "Existing Max Version"}));
  EXPECT_EQ(with({{"Existing Min Version", 3}, {"Existing Max Version", 2}}),
            (Texts{"Version", "Existing Max Version"}));
  EXPECT_EQ(with({{"Existing Min Version", double(NAN)}, {"Existing Max Version", double(NAN)}}),
            Texts{"Version"});
}

TEST(FailedRequirements, WithoutAVersionHaveWhyTheOfferedOneIsNeverNewer) {
  const auto reasonOf = [](const PropertyValue& offered) {
    return FailedRequirements(Types::LegacyUsbc, Record{{"Version", offered}}, {Port}).at(0).reason;
  };
  EXPECT_EQ(reasonOf(1), FailureReason::HardwareLacksKey);
  EXPECT_EQ(reasonOf(0), FailureReason::NotNewer);
  EXPECT_EQ(reasonOf(double(NAN)), FailureReason::NotNewer);
  EXPECT_EQ(reasonOf("50"), FailureReason::WrongKind);
  EXPECT_EQ(TextOf("Version", FailureReason::NotNewer, 0, {}),
            "0 at 9:4 is not newer than any version that the controller could have");
}

TEST(FailedRequirements, WithoutAVersionDependOnWhatTheControllerCouldReport) {
  const Record hundredths = {
      {"Version", 5}, {"Existing Min Version", 4.5}, {"Existing Max Version", 4.6}};
  EXPECT_EQ(FailedKeys(hundredths), (Texts{"Version", "Existing Min Version"}));
  EXPECT_EQ(FailedKeys(hundredths, Ridge), Texts{"Version"});
  const Record whole = {{"Version", 5}, {"Existing Min Version", 4}, {"Existing Max Version", 4}};
  EXPECT_EQ(FailuresOf(Types::LegacyThunderbolt, whole, Ridge).at(1),
            "LegacyThunderbolt: Existing Max Version 4, Version -");
  const Record high = {{"Version", 1e12}, {"Existing Min Version", 1e11}};
  EXPECT_EQ(FailedKeys(high), (Texts{"Version", "Existing Min Version"}));
}

TEST(FailedRequirements, WithoutAVersionThatIsNotNeededHaveNoBounds) {
  const Record bad = {{"Existing Min Version", "1"}, {"Existing Max Version", -1}};
  EXPECT_EQ(FailuresOf(Types::LegacyUsbc, bad, Port, true), Texts{});
}

// Whether the port could report a version with which the personality matches.
bool MatchesWithAnyVersion(const Record& personality) {
  StringConsole console;
  const auto matches = [&](int version) {
    return CheckLegacyUsbcRequirements(personality, {With(Port, {{"Version", version}})}, console);
  };
  return std::ranges::any_of(std::array{0, 1, 2, 3, 4, 5, 6, 7, 8}, matches);
}

// "would match if these were met" is true, and each of them is needed, for every combination.
TEST(FailedRequirements, WithoutAnInstalledVersionAreThoseToFixForAMatch) {
  const std::vector<Value> bounds = {Value(),  Value("1"), Value(0),  Value(1),          Value(2),
                                     Value(3), Value(7),   Value(-1), Value(double(NAN))};
  for (const auto& offered : {Value(2), Value(4), Value(0), Value("x"), Value()}) {
    for (const auto& minimum : bounds) {
      for (const auto& maximum : bounds) {
        auto personality = With(SingleEntry("Version", offered),
                                With(SingleEntry("Existing Min Version", minimum),
                                     SingleEntry("Existing Max Version", maximum)));
        const auto keys = FailedKeys(personality);
        ASSERT_EQ(keys.at(0), "Version");
        auto met = personality;
        for (std::size_t i = 1; i < keys.size(); ++i) met = Without(met, keys[i]);
        const bool isOffered = MatchesWithAnyVersion(SingleEntry("Version", offered));
        if (!isOffered) met = With(met, {{"Version", 9}});
        EXPECT_TRUE(MatchesWithAnyVersion(met)) << DumpText(Dictionary(personality));
        for (std::size_t i = 1; i < keys.size(); ++i) {
          const auto bound = With(met, SingleEntry(keys[i], *personality.Find(keys[i])));
          EXPECT_FALSE(MatchesWithAnyVersion(bound)) << DumpText(Dictionary(personality));
        }
      }
    }
  }
}

TEST(DistanceOf, ThatOfAnotherControllerIsLongerThanThatOfEveryVersion) {
  const auto distance = [](const Record& personality) {
    return DistanceOf(FailedRequirements(Types::Usbc, personality, {FullController, 2}));
  };
  const auto tooOld = With(FittingPersonality, {{"Version", 1},
                                                {"Existing Min Version", 9},
                                                {"Existing Max Version", 0},
                                                {"MinBoardRevision", 9}});
  const auto otherPort = With(FittingPersonality, {{"Port Address", 1}});
  EXPECT_EQ(distance(FittingPersonality), Distance());
  EXPECT_EQ(distance(tooOld), (Distance{0, 0, 4}));
  EXPECT_EQ(distance(otherPort), (Distance{0, 1, 1}));
  EXPECT_LT(distance(tooOld), distance(otherPort));
  const auto never = With(FittingPersonality, {{"Existing Min Version", "1"}});
  EXPECT_EQ(distance(never), (Distance{1, 0, 1}));
  EXPECT_LT(distance(otherPort), distance(never));
}

}  // namespace
}  // namespace fernwick::lab
