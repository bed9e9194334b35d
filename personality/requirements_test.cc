#include "personality/requirements.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <map>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/odd_values.h"
#include "testing/requirement_diagnostics.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Applies;
using testing::Bytes;
using testing::Dict;
using testing::DoesNotApply;
using testing::List;
using testing::MinimumNotMet;
using testing::MissingOtpRevision;
using testing::MissingRevision;
using testing::MissingUuid;
using testing::NonNumbers;
using testing::NoVersion;
using testing::ResultOf;
using testing::SingleEntry;
using testing::With;
using testing::Without;

using enum KeyPresence;
using enum RequirementTest;
using enum SingleValueKind;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t MaxUnsigned = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t MinSigned = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t TwoTo53 = std::uint64_t{1} << 53;

// Equal, greater, less.
using Comparisons = std::array<bool, 3>;

Comparisons Compared(const PropertyValue& a, const PropertyValue& b) {
  return {NumbersEqual(a, b), NumberGreater(a, b), NumberLess(a, b)};
}

constexpr Comparisons AllFalse = {false, false, false};

// Ascending; the numbers of one group are equal.
const std::vector<std::vector<PropertyValue>> GroupsInOrder = {
    {-Infinity},
    {-9223372036854777856.0},
    {MinSigned, -9223372036854775808.0},
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
    {MaxUnsigned},
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
  EXPECT_EQ(Compared(NotANumber, NotANumber), AllFalse);
  for (const auto& group : GroupsInOrder) {
    EXPECT_EQ(Compared(NotANumber, group.front()), AllFalse);
    EXPECT_EQ(Compared(group.front(), NotANumber), AllFalse);
  }
}

TEST(Comparisons, AnOperandThatIsNotANumberMakesEachFalse) {
  for (const auto& [name, other] : NonNumbers()) {
    for (const PropertyValue& number : List({5, 5.0, true, -1, 9})) {
      EXPECT_EQ(Compared(other, number), AllFalse) << name;
      EXPECT_EQ(Compared(number, other), AllFalse) << name;
    }
    EXPECT_EQ(Compared(other, other), AllFalse) << name;
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

TEST(StringsEqual, AnOperandThatIsNotAStringMakesItFalse) {
  for (const PropertyValue& other :
       List({2, 2.0, true, Bytes("2"), List({"2"}), Dict({{"2", "2"}}), Date{2}})) {
    EXPECT_FALSE(StringsEqual(other, "2")) << ::testing::PrintToString(other);
    EXPECT_FALSE(StringsEqual("2", other)) << ::testing::PrintToString(other);
    EXPECT_FALSE(StringsEqual(other, other)) << ::testing::PrintToString(other);
  }
}

// A requirement as text, with all that decides what it tests.
std::string Described(const Requirement& requirement) {
  std::string text = std::to_string(static_cast<int>(requirement.test));
  for (const auto part : {requirement.key, requirement.hardwareKey, requirement.type}) {
    text.append(" | ").append(part);
  }
  text += requirement.presence == RequiredKey ? " | required" : " | optional";
  text += requirement.kind == NumberKind ? " | number" : " | string";
  if (requirement.equal == NumbersEqual) text += " | equal numbers";
  if (requirement.equal == StringsEqual) text += " | equal strings";
  return text.append(" | ").append(requirement.missingKeyMessage);
}

std::vector<std::string> Described(std::span<const Requirement> requirements) {
  std::vector<std::string> texts;
  for (const auto& requirement : requirements) texts.push_back(Described(requirement));
  return texts;
}

using Rows = std::vector<Requirement>;

Rows Joined(std::initializer_list<Rows> tables) {
  Rows joined;
  for (const auto& table : tables) joined.insert(joined.end(), table.begin(), table.end());
  return joined;
}

Requirement Optional(std::string_view key, std::string_view type) {
  return {SetMatch, key, key, type};
}

Requirement Required(std::string_view key, std::string_view type, std::string_view message = {}) {
  return {SetMatch, key, key, type, RequiredKey, NumberKind, NumbersEqual, message};
}

const Rows LegacyUsbcRows = {
    {NewerVersion, "Version", "Version", "LegacyUSBC"},
    {ReleasedFirmware, "Version", "Engineering Version", "LegacyUSBC"},
    {InstalledVersion, "Version", "Version", "LegacyUSBC"},
    {MinVersion, "Existing Min Version", "Version", "LegacyUSBC"},
    {MaxVersion, "Existing Max Version", "Version", "LegacyUSBC"},
    Optional("Port Address", "LegacyUSBC"),
};

const Rows OwnUsbcRows = {
    Optional("RID", "USBC"),
    {MinBoardRevision, "MinBoardRevision", "", "USBC"},
    {MaxBoardRevision, "MaxBoardRevision", "", "USBC"},
    Required("Port Silicon Vendor ID", "USBC"),
    Required("Port Silicon Device ID", "USBC"),
    Required("Port Silicon Revision", "USBC", MissingRevision),
    {SetMatch, "Port OTP Revision", "Port OTP Revision", "USBC", OptionalKey, NumberKind,
     NumbersEqual, MissingOtpRevision},
    {SetMatch, "Port UUID", "Port UUID", "USBC", OptionalKey, NumberKind, StringsEqual,
     MissingUuid},
};

// Without the test for engineering firmware.
const Rows LegacyThunderboltRows = {
    {NewerVersion, "Version", "Version", "LegacyThunderbolt"},
    {InstalledVersion, "Version", "Version", "LegacyThunderbolt"},
    {MinVersion, "Existing Min Version", "Version", "LegacyThunderbolt"},
    {MaxVersion, "Existing Max Version", "Version", "LegacyThunderbolt"},
    Optional("RID", "LegacyThunderbolt"),
    Required("Ridge Silicon Vendor ID", "LegacyThunderbolt"),
    Required("Ridge Silicon Device ID", "LegacyThunderbolt"),
    Required("Ridge Silicon Revision", "LegacyThunderbolt"),
    Optional("Ridge UID", "LegacyThunderbolt"),
};

const Rows OwnThunderboltRows = {
    {SetMatch, "Device Model Name", "Device Model Name", "Thunderbolt", OptionalKey, StringKind,
     StringsEqual},
    Optional("Device Model ID", "Thunderbolt"),
    Optional("Device Model Revision", "Thunderbolt"),
    Optional("Firmware Mode", "Thunderbolt"),
};

TEST(RequirementsOf, EachTypeAreThoseOfTheTypesItIncludesAndItsOwnInOrder) {
  EXPECT_EQ(Described(RequirementsOf(Types::LegacyUsbc)), Described(LegacyUsbcRows));
  EXPECT_EQ(Described(RequirementsOf(Types::Usbc)),
            Described(Joined({LegacyUsbcRows, OwnUsbcRows})));
  EXPECT_EQ(Described(RequirementsOf(Types::LegacyThunderbolt)), Described(LegacyThunderboltRows));
  EXPECT_EQ(
      Described(RequirementsOf(Types::Thunderbolt)),
      Described(Joined({LegacyUsbcRows, OwnUsbcRows, LegacyThunderboltRows, OwnThunderboltRows})));
}

TEST(RequirementsOf, NoTypeAreEmpty) {
  EXPECT_TRUE(RequirementsOf(Types::None).empty());
}

TEST(RequirementsOf, ThunderboltListTwiceWhatIsTestedTwice) {
  std::map<std::pair<RequirementTest, std::string_view>, int> counts;
  for (const auto& requirement : RequirementsOf(Types::Thunderbolt)) {
    ++counts[{requirement.test, requirement.key}];
  }
  for (const auto& [requirement, count] : counts) {
    const auto& [test, key] = requirement;
    const bool isOfWindow = test == NewerVersion || test == InstalledVersion ||
                            test == MinVersion || test == MaxVersion;
    EXPECT_EQ(count, isOfWindow || key == "RID" ? 2 : 1) << key;
  }
}

constexpr std::uint8_t BoardRevision = 3;

// A port below a Thunderbolt controller, and an update that fits it.
const Record Port = {
    {"RID", 2},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Port Address", 0},
    {"Version", 41},
    {"Port UUID", "b0A1"},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
    {"Device Model Name", "Grat"},
    {"Firmware Mode", true},
    {"Ridge UID", 0x5A3},
    {"Engineering Version", 0},
};

const Record Update = {
    {"Version", 42},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
};

// A requirement that is not met.
struct Failed {
  std::string_view key;
  FailureReason reason;
  std::string_view hardwareKey;
  std::string_view type;  // whose own requirement it is

  friend bool operator==(const Failed&, const Failed&) = default;
};

void PrintTo(const Failed& failed, std::ostream* out) {
  *out << failed.type << ": " << failed.key << ", reason " << static_cast<int>(failed.reason)
       << ", found in " << failed.hardwareKey;
}

using Failures = std::vector<Failed>;

// All requirements of the type that are not met. The check of the type fails exactly when there is
// one, and writes the diagnostics up to the first and no other.
Failures FailuresOf(TypeSet type, const Record& personality, const Record& hardware,
                    bool bypassVersionCheck) {
  const RequirementContext context = {hardware, BoardRevision, bypassVersionCheck};
  Failures failures;
  std::string diagnostics;
  for (const auto& requirement : RequirementsOf(type)) {
    const auto verdict = Test(requirement, personality, context);
    if (failures.empty()) diagnostics += verdict.diagnostic;
    if (!verdict.failure) continue;
    failures.push_back(
        {requirement.key, *verdict.failure, requirement.hardwareKey, requirement.type});
  }
  const auto check = [type](Dictionary update, const RequirementContext& against,
                            Console& console) {
    return ControllerCheck(type, against).Applies(update, console);
  };
  EXPECT_EQ(ResultOf(check, personality, context),
            failures.empty() ? Applies(diagnostics) : DoesNotApply(diagnostics));
  return failures;
}

Failures ThunderboltFailures(const Record& personality, const Record& hardware = Port) {
  return FailuresOf(Types::Thunderbolt, personality, hardware, false);
}

Failures LegacyUsbcFailures(const Record& personality, const Record& hardware = Port) {
  return FailuresOf(Types::LegacyUsbc, personality, hardware, false);
}

// A requirement of the version window, which both types have.
Failures OfBothWindows(std::string_view key, FailureReason reason) {
  return {{key, reason, "Version", "LegacyUSBC"}, {key, reason, "Version", "LegacyThunderbolt"}};
}

TEST(Test, OfAPersonalityThatFitsMeetsEveryRequirement) {
  EXPECT_EQ(ThunderboltFailures(Update), Failures{});
  EXPECT_EQ(LegacyUsbcFailures(Update), Failures{});
}

TEST(Test, FailsWhereThePersonalityLacksAKey) {
  EXPECT_EQ(ThunderboltFailures(Without(Update, "Port Silicon Revision")),
            (Failures{{"Port Silicon Revision", FailureReason::PersonalityLacksKey,
                       "Port Silicon Revision", "USBC"}}));
  EXPECT_EQ(ThunderboltFailures(Without(Update, "Version")),
            OfBothWindows("Version", FailureReason::PersonalityLacksKey));
  EXPECT_EQ(LegacyUsbcFailures({}),
            (Failures{{"Version", FailureReason::PersonalityLacksKey, "Version", "LegacyUSBC"}}));
}

TEST(Test, FailsWhereTheHardwareLacksAKey) {
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"Port OTP Revision", 5}})),
            (Failures{{"Port OTP Revision", FailureReason::HardwareLacksKey, "Port OTP Revision",
                       "USBC"}}));
  EXPECT_EQ(ThunderboltFailures(Update, Without(Port, "Version")),
            OfBothWindows("Version", FailureReason::HardwareLacksKey));
  EXPECT_EQ(LegacyUsbcFailures(Update, Without(Port, "Version")),
            (Failures{{"Version", FailureReason::HardwareLacksKey, "Version", "LegacyUSBC"}}));
}

TEST(Test, FailsOnAKindThatMatchesNothing) {
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"Ridge UID", "5A3"}})),
            (Failures{{"Ridge UID", FailureReason::WrongKind, "Ridge UID", "LegacyThunderbolt"}}));
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"Port UUID", "b0A1"}})),
            (Failures{{"Port UUID", FailureReason::WrongKind, "Port UUID", "USBC"}}));
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"Device Model Name", 5}})),
            (Failures{{"Device Model Name", FailureReason::WrongKind, "Device Model Name",
                       "Thunderbolt"}}));
}

TEST(Test, FailsOnBoundsThatAreNotNumbers) {
  for (const auto& [name, value] : NonNumbers()) {
    for (const char* key : {"Existing Min Version", "Existing Max Version"}) {
      EXPECT_EQ(ThunderboltFailures(With(Update, SingleEntry(key, value))),
                OfBothWindows(key, FailureReason::WrongKind))
          << name;
    }
    for (const char* key : {"MinBoardRevision", "MaxBoardRevision"}) {
      EXPECT_EQ(ThunderboltFailures(With(Update, SingleEntry(key, value))),
                (Failures{{key, FailureReason::WrongKind, "", "USBC"}}))
          << name;
    }
  }
}

TEST(Test, FailsOnUnequalValues) {
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"RID", 3}})),
            (Failures{{"RID", FailureReason::Unequal, "RID", "USBC"},
                      {"RID", FailureReason::Unequal, "RID", "LegacyThunderbolt"}}));
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"Firmware Mode", List({0, "1"})}})),
            (Failures{{"Firmware Mode", FailureReason::Unequal, "Firmware Mode", "Thunderbolt"}}));
  EXPECT_EQ(LegacyUsbcFailures(With(Update, {{"Port Address", Array()}})),
            (Failures{{"Port Address", FailureReason::Unequal, "Port Address", "LegacyUSBC"}}));
}

TEST(Test, FailsOnAVersionThatIsNotNewer) {
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"Version", 41}})),
            OfBothWindows("Version", FailureReason::NotNewer));
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(ThunderboltFailures(With(Update, SingleEntry("Version", value))),
              OfBothWindows("Version", FailureReason::NotNewer))
        << name;
  }
}

TEST(Test, FailsOnEngineeringFirmwareForPortsAlone) {
  EXPECT_EQ(ThunderboltFailures(Update, With(Port, {{"Engineering Version", 64}})),
            (Failures{{"Version", FailureReason::EngineeringFirmware, "Engineering Version",
                       "LegacyUSBC"}}));
}

TEST(Test, NamesTheBoundOfTheInstalledVersionThatIsNotMet) {
  EXPECT_EQ(
      LegacyUsbcFailures(With(Update, {{"Existing Min Version", 41.5}})),
      (Failures{{"Existing Min Version", FailureReason::AboveInstalled, "Version", "LegacyUSBC"}}));
  EXPECT_EQ(
      LegacyUsbcFailures(With(Update, {{"Existing Max Version", 40}})),
      (Failures{{"Existing Max Version", FailureReason::BelowInstalled, "Version", "LegacyUSBC"}}));
}

TEST(Test, NamesTheBoundsOfTheBoardRevisionThatAreNotMet) {
  EXPECT_EQ(ThunderboltFailures(With(Update, {{"MinBoardRevision", 4}, {"MaxBoardRevision", 2}})),
            (Failures{{"MinBoardRevision", FailureReason::AboveBoardRevision, "", "USBC"},
                      {"MaxBoardRevision", FailureReason::BelowBoardRevision, "", "USBC"}}));
}

TEST(Test, FindsEveryFailureInTheOrderOfTheTable) {
  const auto update = With(Update, {{"Firmware Mode", false},
                                    {"Ridge UID", 1},
                                    {"Port UUID", Array()},
                                    {"RID", 0},
                                    {"Port Address", 1},
                                    {"Existing Max Version", 40},
                                    {"Version", 41}});
  EXPECT_EQ(
      ThunderboltFailures(update),
      (Failures{
          {"Version", FailureReason::NotNewer, "Version", "LegacyUSBC"},
          {"Existing Max Version", FailureReason::BelowInstalled, "Version", "LegacyUSBC"},
          {"Port Address", FailureReason::Unequal, "Port Address", "LegacyUSBC"},
          {"RID", FailureReason::Unequal, "RID", "USBC"},
          {"Port UUID", FailureReason::Unequal, "Port UUID", "USBC"},
          {"Version", FailureReason::NotNewer, "Version", "LegacyThunderbolt"},
          {"Existing Max Version", FailureReason::BelowInstalled, "Version", "LegacyThunderbolt"},
          {"RID", FailureReason::Unequal, "RID", "LegacyThunderbolt"},
          {"Ridge UID", FailureReason::Unequal, "Ridge UID", "LegacyThunderbolt"},
          {"Firmware Mode", FailureReason::Unequal, "Firmware Mode", "Thunderbolt"},
      }));
}

TEST(Test, OfATypeByItselfNamesThatType) {
  EXPECT_EQ(FailuresOf(Types::LegacyThunderbolt, With(Update, {{"RID", 0}}), Port, false),
            (Failures{{"RID", FailureReason::Unequal, "RID", "LegacyThunderbolt"}}));
}

TEST(Test, BypassedFindsNoFaultWithTheVersion) {
  EXPECT_EQ(FailuresOf(Types::Thunderbolt, Without(Update, "Version"),
                       With(Port, {{"Engineering Version", 64}}), true),
            Failures{});
  // With bounds that would not be met, of a version that is not known.
  EXPECT_EQ(FailuresOf(Types::Thunderbolt, With(Update, {{"Existing Min Version", "x"}}),
                       Without(Port, "Version"), true),
            Failures{});
}

// Each of the two windows reports that no version is known, and nothing else.
TEST(Test, OfAnUnknownInstalledVersionIsADiagnosticAndNoFailure) {
  const auto port = Without(Port, "Version");
  for (const auto& requirement : RequirementsOf(Types::Thunderbolt)) {
    const bool isDiagnosed = requirement.test == InstalledVersion;
    EXPECT_EQ(fernwick::Test(requirement, Update, {port, BoardRevision, true}),
              (Verdict{{}, isDiagnosed ? NoVersion : ""}))
        << requirement.key;
  }
}

TEST(ControllerCheck, OfNoTypeRequiresNothing) {
  testing::TestConsole console;
  EXPECT_TRUE(ControllerCheck(Types::None, {}).Applies({}, console));
  EXPECT_EQ(console.Error(), "");
}

TEST(ControllerCheck, ServesAnyNumberOfPersonalities) {
  testing::TestConsole console;
  const ControllerCheck check(Types::Thunderbolt, {Port, BoardRevision});
  EXPECT_TRUE(check.Applies(Update, console));
  EXPECT_FALSE(check.Applies(Without(Update, "Port Silicon Revision"), console));
  EXPECT_FALSE(check.Applies(With(Update, {{"Existing Min Version", 42}}), console));
  EXPECT_TRUE(check.Applies(Update, console));
  EXPECT_EQ(console.Error(), std::string(MissingRevision) + MinimumNotMet);
}

// Those after it would write a diagnostic, too.
TEST(ControllerCheck, StopsAtTheFirstThatIsNotMet) {
  const auto update = Without(
      With(Update,
           {{"Existing Min Version", 42}, {"Existing Max Version", "x"}, {"Port OTP Revision", 5}}),
      "Port Silicon Revision");
  EXPECT_EQ(ResultOf(CheckThunderboltRequirements, update, {Port, BoardRevision}),
            DoesNotApply(MinimumNotMet));
  EXPECT_EQ(ThunderboltFailures(update).size(), 6u);
}

}  // namespace
}  // namespace fernwick
