#include "personality/requirement_recorder.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "personality/legacy_thunderbolt_check.h"
#include "personality/legacy_usbc_check.h"
#include "personality/personality.h"
#include "personality/thunderbolt_check.h"
#include "personality/usbc_check.h"
#include "registry/hardware_record.h"
#include "testing/capture.h"
#include "testing/dictionaries.h"
#include "testing/distinctness.h"
#include "testing/inputs/odd_values.h"
#include "testing/property_values.h"
#include "testing/version_check_bypass.h"

namespace fernwick {

void PrintTo(const FailedRequirement& failure, std::ostream* out) {
  *out << failure.check << ": " << failure.key << ", shortfall "
       << static_cast<int>(failure.shortfall) << ", wanted "
       << ::testing::PrintToString(failure.wanted) << ", found in " << failure.hardwareKey << ": "
       << ::testing::PrintToString(failure.found);
}

namespace {

using testing::Holding;
using testing::NonNumbers;
using testing::VersionCheckBypass;
using testing::With;
using testing::Without;

using Failures = std::vector<FailedRequirement>;

constexpr unsigned BoardRevision = 3;

// A port below a Thunderbolt controller, and an update that fits it.
const HardwareRecord Port = {
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

const Personality Update = {
    {"Version", 42},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
};

template <typename Check>
std::pair<bool, std::string> AnswerOf(Check check, RequirementRecorder* recorder) {
  testing::StandardErrorCapture diagnostics;
  const bool applies = check(recorder);
  return {applies, diagnostics.TakeText()};
}

// What a recorder learns. With it the answer and the diagnostics are the same as without.
template <typename Check>
Failures Learned(Check check) {
  RequirementRecorder recorder;
  const auto answer = AnswerOf(check, &recorder);
  EXPECT_EQ(answer, AnswerOf(check, nullptr));
  EXPECT_EQ(answer.first, !recorder.HasFailures());
  return recorder.Failures();
}

Failures WhyNotThunderbolt(const Personality& personality, const HardwareRecord& hardware = Port) {
  return Learned([&](RequirementRecorder* recorder) {
    return CheckThunderboltRequirements(personality, hardware, BoardRevision, recorder);
  });
}

Failures WhyNotLegacyUsbc(const Personality& personality, const HardwareRecord& hardware = Port) {
  return Learned([&](RequirementRecorder* recorder) {
    return CheckLegacyUsbcRequirements(personality, hardware, recorder);
  });
}

TEST(RequirementRecorder, LearnsNothingOfAPersonalityThatFits) {
  EXPECT_EQ(WhyNotThunderbolt(Update), Failures{});
  EXPECT_EQ(WhyNotLegacyUsbc(Update), Failures{});
}

TEST(RequirementRecorder, LearnsThatThePersonalityLacksAKey) {
  EXPECT_EQ(WhyNotThunderbolt(Without(Update, "Port Silicon Revision")),
            (Failures{{"Port Silicon Revision",
                       Shortfall::PersonalityLacksKey,
                       {},
                       "Port Silicon Revision",
                       7,
                       "USBC"}}));
  EXPECT_EQ(
      WhyNotLegacyUsbc({}),
      (Failures{{"Version", Shortfall::PersonalityLacksKey, {}, "Version", 41, "LegacyUSBC"}}));
}

TEST(RequirementRecorder, LearnsThatTheHardwareLacksAKey) {
  EXPECT_EQ(
      WhyNotThunderbolt(With(Update, {{"Port OTP Revision", 5}})),
      (Failures{
          {"Port OTP Revision", Shortfall::HardwareLacksKey, 5, "Port OTP Revision", {}, "USBC"}}));
  EXPECT_EQ(WhyNotLegacyUsbc(Update, Without(Port, "Version")),
            (Failures{{"Version", Shortfall::HardwareLacksKey, 42, "Version", {}, "LegacyUSBC"}}));
}

TEST(RequirementRecorder, LearnsOfAKindThatMatchesNothing) {
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"Ridge UID", "5A3"}})),
            (Failures{{"Ridge UID", Shortfall::WrongKind, "5A3", "Ridge UID", 0x5A3,
                       "LegacyThunderbolt"}}));
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"Port UUID", "b0A1"}})),
            (Failures{{"Port UUID", Shortfall::WrongKind, "b0A1", "Port UUID", "b0A1", "USBC"}}));
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"Device Model Name", 5}})),
            (Failures{{"Device Model Name", Shortfall::WrongKind, 5, "Device Model Name", "Grat",
                       "Thunderbolt"}}));
}

TEST(RequirementRecorder, LearnsOfBoundsThatAreNoNumbers) {
  for (const auto& [name, value] : NonNumbers()) {
    for (const char* key : {"Existing Min Version", "Existing Max Version"}) {
      EXPECT_EQ(WhyNotThunderbolt(With(Update, Holding(key, value))),
                (Failures{{key, Shortfall::WrongKind, value, "Version", 41, "LegacyUSBC"}}))
          << name;
    }
    for (const char* key : {"MinBoardRevision", "MaxBoardRevision"}) {
      EXPECT_EQ(WhyNotThunderbolt(With(Update, Holding(key, value))),
                (Failures{{key, Shortfall::WrongKind, value, "", 3, "USBC"}}))
          << name;
    }
  }
}

TEST(RequirementRecorder, LearnsOfUnequalValues) {
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"RID", 3}})),
            (Failures{{"RID", Shortfall::Unequal, 3, "RID", 2, "USBC"}}));
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"Firmware Mode", Array{0, "1"}}})),
            (Failures{{"Firmware Mode", Shortfall::Unequal, Array{0, "1"}, "Firmware Mode", true,
                       "Thunderbolt"}}));
  EXPECT_EQ(
      WhyNotLegacyUsbc(With(Update, {{"Port Address", Array{}}})),
      (Failures{{"Port Address", Shortfall::Unequal, Array{}, "Port Address", 0, "LegacyUSBC"}}));
}

TEST(RequirementRecorder, LearnsThatTheVersionIsNotNewer) {
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"Version", 41}})),
            (Failures{{"Version", Shortfall::NotNewer, 41, "Version", 41, "LegacyUSBC"}}));
  for (const auto& [name, value] : NonNumbers()) {
    EXPECT_EQ(WhyNotThunderbolt(With(Update, Holding("Version", value))),
              (Failures{{"Version", Shortfall::NotNewer, value, "Version", 41, "LegacyUSBC"}}))
        << name;
  }
}

TEST(RequirementRecorder, LearnsThatEngineeringFirmwareIsInstalled) {
  EXPECT_EQ(WhyNotThunderbolt(Update, With(Port, {{"Engineering Version", 64}})),
            (Failures{{"Version", Shortfall::EngineeringFirmware, 42, "Engineering Version", 64,
                       "LegacyUSBC"}}));
}

TEST(RequirementRecorder, LearnsWhichBoundOfTheInstalledVersionIsNotMet) {
  EXPECT_EQ(WhyNotLegacyUsbc(With(Update, {{"Existing Min Version", 41.5}})),
            (Failures{{"Existing Min Version", Shortfall::AboveInstalled, 41.5, "Version", 41,
                       "LegacyUSBC"}}));
  EXPECT_EQ(WhyNotLegacyUsbc(With(Update, {{"Existing Max Version", 40}})),
            (Failures{{"Existing Max Version", Shortfall::BelowInstalled, 40, "Version", 41,
                       "LegacyUSBC"}}));
}

TEST(RequirementRecorder, LearnsWhichBoundOfTheBoardRevisionIsNotMet) {
  EXPECT_EQ(WhyNotThunderbolt(With(Update, {{"MinBoardRevision", 4}, {"MaxBoardRevision", 2}})),
            (Failures{{"MinBoardRevision", Shortfall::AboveBoardRevision, 4, "", 3, "USBC"},
                      {"MaxBoardRevision", Shortfall::BelowBoardRevision, 2, "", 3, "USBC"}}));
}

TEST(RequirementRecorder, LearnsEveryFailureInTheOrderOfTheChecks) {
  const auto update = With(Update, {{"Firmware Mode", false},
                                    {"Ridge UID", 1},
                                    {"Port UUID", Array{}},
                                    {"RID", 0},
                                    {"Port Address", 1},
                                    {"Existing Max Version", 40},
                                    {"Version", 41}});
  EXPECT_EQ(
      WhyNotThunderbolt(update),
      (Failures{
          {"Version", Shortfall::NotNewer, 41, "Version", 41, "LegacyUSBC"},
          {"Existing Max Version", Shortfall::BelowInstalled, 40, "Version", 41, "LegacyUSBC"},
          {"Port Address", Shortfall::Unequal, 1, "Port Address", 0, "LegacyUSBC"},
          {"RID", Shortfall::Unequal, 0, "RID", 2, "USBC"},
          {"Port UUID", Shortfall::Unequal, Array{}, "Port UUID", "b0A1", "USBC"},
          {"Ridge UID", Shortfall::Unequal, 1, "Ridge UID", 0x5A3, "LegacyThunderbolt"},
          {"Firmware Mode", Shortfall::Unequal, false, "Firmware Mode", true, "Thunderbolt"},
      }));
}

TEST(RequirementRecorder, NamesTheCheckThatIsRunByItself) {
  const auto failures = Learned([](RequirementRecorder* recorder) {
    return CheckLegacyThunderboltRequirements(With(Update, {{"RID", 0}}), Port, 0, recorder);
  });
  EXPECT_EQ(failures, (Failures{{"RID", Shortfall::Unequal, 0, "RID", 2, "LegacyThunderbolt"}}));
}

TEST(RequirementRecorder, BypassedLearnsNothingOfTheVersion) {
  const VersionCheckBypass bypass;
  EXPECT_EQ(
      WhyNotThunderbolt(Without(Update, "Version"), With(Port, {{"Engineering Version", 64}})),
      Failures{});
  // With bounds that would not be met, of a version that is not known.
  EXPECT_EQ(
      WhyNotThunderbolt(With(Update, {{"Existing Min Version", "x"}}), Without(Port, "Version")),
      Failures{});
}

// Only the failure that decides may write; those behind it would write, too.
TEST(RequirementRecorder, AddsNoDiagnosticToTheFirstFailures) {
  const auto update = Without(
      With(Update,
           {{"Existing Min Version", 42}, {"Existing Max Version", "x"}, {"Port OTP Revision", 5}}),
      "Port Silicon Revision");
  RequirementRecorder recorder;
  const auto answer = AnswerOf(
      [&](RequirementRecorder* why) {
        return CheckThunderboltRequirements(update, Port, BoardRevision, why);
      },
      &recorder);
  EXPECT_EQ(answer, std::pair(false, std::string("** Min firmware version not met.  Aborting\n")));
  EXPECT_EQ(recorder.Failures().size(), 4u);
}

TEST(RequirementRecorder, KeepsARequirementThatIsHeldTwiceOnce) {
  RequirementRecorder recorder;
  recorder.Add({"RID", Shortfall::Unequal, 1, "RID", 2});
  recorder.Add({"RID", Shortfall::WrongKind, "1", "RID", 2});
  recorder.Add({"RID", Shortfall::Unequal, 3, "RID", 2});
  EXPECT_EQ(recorder.Failures(), (Failures{{"RID", Shortfall::Unequal, 1, "RID", 2},
                                           {"RID", Shortfall::WrongKind, "1", "RID", 2}}));
}

TEST(CheckScope, GivesWayToTheOuterOneAtItsEnd) {
  RequirementRecorder recorder;
  {
    const CheckScope outer("outer", &recorder);
    { const CheckScope inner("inner", &recorder); }
    recorder.Add({"RID", Shortfall::Unequal, 1, "RID", 2});
  }
  recorder.Add({"UID", Shortfall::Unequal, 1, "UID", 2});
  EXPECT_EQ(recorder.Failures(), (Failures{{"RID", Shortfall::Unequal, 1, "RID", 2, "outer"},
                                           {"UID", Shortfall::Unequal, 1, "UID", 2, ""}}));
}

// What tests compare is compared whole.
TEST(RequirementRecorder, FailuresDifferByEachOfTheirMembers) {
  const FailedRequirement failure = {"RID", Shortfall::Unequal, {}, {}, {}};
  std::vector<FailedRequirement> others(6, failure);
  others[0].key = "Version";
  others[1].shortfall = Shortfall::WrongKind;
  others[2].wanted = 1;
  others[3].hardwareKey = "RID";
  others[4].found = 1;
  others[5].check = "USBC";
  testing::ExpectDistinct(failure, others);
}

}  // namespace
}  // namespace fernwick
