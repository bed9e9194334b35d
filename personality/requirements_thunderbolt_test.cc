#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "personality/requirements.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/full_port_record.h"
#include "testing/inputs/odd_values.h"
#include "testing/requirement_diagnostics.h"

namespace fernwick {
namespace {

using testing::Applies;
using testing::Bytes;
using testing::CheckResult;
using testing::Dict;
using testing::DoesNotApply;
using testing::List;
using testing::NonNumbers;
using testing::NoVersion;
using testing::ResultOf;
using testing::With;
using testing::Without;

constexpr char NoVersionTwice[] =
    "** No current firmware version?\n"
    "** No current firmware version?\n";

// A port below a Thunderbolt controller, without what some tests add.
const Record Port = Without(Without(testing::FullPortRecord, "Port OTP Revision"), "Port UUID");

const Record Update = {
    {"Version", 42},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
};

constexpr const char* DeviceModelNumbers[] = {
    "Device Model ID",
    "Device Model Revision",
    "Firmware Mode",
};

CheckResult Check(const Record& personality, const Record& hardware,
                  std::uint8_t boardRevision = 3) {
  return ResultOf(CheckThunderboltRequirements, personality, {hardware, boardRevision});
}

// The same with the version check bypassed.
CheckResult Bypassed(const Record& personality, const Record& hardware,
                     std::uint8_t boardRevision = 3) {
  return ResultOf(CheckThunderboltRequirements, personality, {hardware, boardRevision, true});
}

TEST(ThunderboltCheck, WithoutADeviceModelTheTwoOtherChecksDecide) {
  EXPECT_EQ(Check(Update, Port), Applies());
  EXPECT_EQ(Check(With(Update, {{"RID", 3}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 3}}), Port), DoesNotApply());
}

TEST(ThunderboltCheck, AcceptsAnUpdateWhoseEveryKeyFits) {
  const auto update = With(Update, {{"RID", 2},
                                    {"Port Address", 0},
                                    {"MinBoardRevision", 3},
                                    {"MaxBoardRevision", 3},
                                    {"Existing Min Version", 41.05},
                                    {"Existing Max Version", 41.06},
                                    {"Ridge UID", 0x5A3},
                                    {"Device Model Name", "Grat"},
                                    {"Device Model ID", 30},
                                    {"Device Model Revision", 1},
                                    {"Firmware Mode", 1}});
  EXPECT_EQ(Check(update, Port), Applies());
}

TEST(ThunderboltCheck, NothingAtAllDoesNotApply) {
  EXPECT_EQ(Check({}, {}), DoesNotApply());
}

TEST(ThunderboltCheck, EachOfTheSixSiliconKeysIsNeededInThePersonality) {
  EXPECT_EQ(Check(Without(Update, "Port Silicon Vendor ID"), Port), DoesNotApply());
  EXPECT_EQ(Check(Without(Update, "Port Silicon Device ID"), Port), DoesNotApply());
  EXPECT_EQ(Check(Without(Update, "Port Silicon Revision"), Port),
            DoesNotApply("** Missing port silicon revision key(s)\n"));
  EXPECT_EQ(Check(Without(Update, "Ridge Silicon Vendor ID"), Port), DoesNotApply());
  EXPECT_EQ(Check(Without(Update, "Ridge Silicon Device ID"), Port), DoesNotApply());
  EXPECT_EQ(Check(Without(Update, "Ridge Silicon Revision"), Port), DoesNotApply());
}

TEST(ThunderboltCheck, APortBelowNoThunderboltControllerIsRejectedSilently) {
  const Record port = {
      {"RID", 2},
      {"Port Silicon Vendor ID", 0x4D1},
      {"Port Silicon Device ID", 18},
      {"Port Silicon Revision", 7},
      {"Version", 41},
  };
  EXPECT_EQ(Check(Update, port), DoesNotApply());
}

TEST(ThunderboltCheck, EngineeringFirmwareIsRejectedThoughTheLegacyThunderboltCheckAcceptsIt) {
  const auto port = With(Port, {{"Engineering Version", 64}});
  EXPECT_EQ(Check(Update, port), DoesNotApply());
  EXPECT_EQ(ResultOf(CheckLegacyThunderboltRequirements, Update, {port}), Applies());
}

TEST(ThunderboltCheck, BypassedEngineeringFirmwareIsAccepted) {
  EXPECT_EQ(Bypassed(Update, With(Port, {{"Engineering Version", 64}})), Applies());
}

TEST(ThunderboltCheck, BypassedAMissingInstalledVersionIsReportedTwiceAndMayMatch) {
  EXPECT_EQ(Bypassed(Update, Without(Port, "Version")), Applies(NoVersionTwice));
}

TEST(ThunderboltCheck, BypassedAMissingInstalledVersionIsReportedOnceWhenTheUsbcCheckFails) {
  const auto port = Without(Port, "Version");
  EXPECT_EQ(Bypassed(With(Update, {{"RID", 3}}), port), DoesNotApply(NoVersion));
  EXPECT_EQ(Bypassed(Without(Update, "Port Silicon Revision"), port),
            DoesNotApply(std::string(NoVersion) + "** Missing port silicon revision key(s)\n"));
}

TEST(ThunderboltCheck, BypassedAMissingInstalledVersionIsReportedTwiceWhenALaterStepFails) {
  const auto port = Without(Port, "Version");
  EXPECT_EQ(Bypassed(With(Update, {{"Ridge UID", 3}}), port), DoesNotApply(NoVersionTwice));
  EXPECT_EQ(Bypassed(With(Update, {{"Device Model ID", 3}}), port), DoesNotApply(NoVersionTwice));
}

TEST(ThunderboltCheck, AFailedWindowIsReportedOnce) {
  EXPECT_EQ(Check(With(Update, {{"Existing Min Version", 41.06}}), Port),
            DoesNotApply("** Min firmware version not met.  Aborting\n"));
  EXPECT_EQ(Check(With(Update, {{"Existing Max Version", 41.05}}), Port),
            DoesNotApply("** Max firmware version not met.  Aborting\n"));
  EXPECT_EQ(Check(With(Update, {{"Existing Min Version", "41"}}), Port),
            DoesNotApply("** minversion bad object type in personality\n"));
  EXPECT_EQ(Check(With(Update, {{"Existing Max Version", "41"}}), Port),
            DoesNotApply("** maxversion bad object type in personality\n"));
}

TEST(ThunderboltCheck, MissingPortKeysAreReportedAsForUsbc) {
  EXPECT_EQ(Check(With(Update, {{"Port OTP Revision", 1}}), Port),
            DoesNotApply("** Missing port OTP revision key(s) **\n"));
  EXPECT_EQ(Check(With(Update, {{"Port UUID", List({"b0A1"})}}), Port),
            DoesNotApply("** Missing port UUID(s)\n"));
}

TEST(ThunderboltCheck, TestsTheBoardRevision) {
  const auto update = With(Update, {{"MinBoardRevision", 3}, {"MaxBoardRevision", 3}});
  EXPECT_EQ(Check(update, Port, 3), Applies());
  EXPECT_EQ(Check(update, Port, 4), DoesNotApply());
}

TEST(ThunderboltCheck, ASingleModelNameMatchesItsEqual) {
  EXPECT_EQ(Check(With(Update, {{"Device Model Name", "Grat"}}), Port), Applies());
}

TEST(ThunderboltCheck, AListThatContainsTheModelNameMatches) {
  EXPECT_EQ(Check(With(Update, {{"Device Model Name", List({"Fjell", "Grat"})}}), Port), Applies());
}

TEST(ThunderboltCheck, AModelNameInOtherLetterCaseDoesNotMatch) {
  EXPECT_EQ(Check(With(Update, {{"Device Model Name", "grat"}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Device Model Name", List({"GRAT"})}}), Port), DoesNotApply());
}

TEST(ThunderboltCheck, AModelNameThatIsANumberIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Device Model Name", 5}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Device Model Name", 5}}), With(Port, {{"Device Model Name", 5}})),
            DoesNotApply());
}

TEST(ThunderboltCheck, AModelNameOfAnyOtherKindIsRejectedSilently) {
  for (const PropertyValue& name :
       List({true, 5.0, Bytes("Grat"), Dict({{"Grat", "Grat"}}), Array(), List({5}),
             testing::NestedArrays(2, "Grat"), testing::DateOf("2026-11-20T00:00:00Z")})) {
    EXPECT_EQ(Check(With(Update, {{"Device Model Name", name}}), Port), DoesNotApply())
        << ::testing::PrintToString(name);
  }
}

TEST(ThunderboltCheck, AnEmptyModelNameMatchesAnEmptyOne) {
  const auto update = With(Update, {{"Device Model Name", ""}});
  EXPECT_EQ(Check(update, With(Port, {{"Device Model Name", ""}})), Applies());
  EXPECT_EQ(Check(update, Port), DoesNotApply());
}

TEST(ThunderboltCheck, ADeviceModelKeyThatThePortLacksIsRejectedSilently) {
  EXPECT_EQ(
      Check(With(Update, {{"Device Model Name", "Grat"}}), Without(Port, "Device Model Name")),
      DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Device Model ID", 30}}), Without(Port, "Device Model ID")),
            DoesNotApply());
  EXPECT_EQ(
      Check(With(Update, {{"Device Model Revision", 1}}), Without(Port, "Device Model Revision")),
      DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Firmware Mode", 1}}), Without(Port, "Firmware Mode")),
            DoesNotApply());
}

TEST(ThunderboltCheck, ADeviceModelNumberMatchesItsEqualAloneOrInAList) {
  for (const auto* key : DeviceModelNumbers) {
    const PropertyValue value = *Port.Find(key);
    EXPECT_EQ(Check(With(Update, {{key, value}}), Port), Applies()) << key;
    EXPECT_EQ(Check(With(Update, {{key, List({"x", value, -7})}}), Port), Applies()) << key;
  }
}

TEST(ThunderboltCheck, AnyOtherDeviceModelNumberIsRejectedSilently) {
  for (const auto* key : DeviceModelNumbers) {
    EXPECT_EQ(Check(With(Update, {{key, -7}}), Port), DoesNotApply()) << key;
    EXPECT_EQ(Check(With(Update, {{key, Array()}}), Port), DoesNotApply()) << key;
    for (const auto& [name, value] : NonNumbers()) {
      EXPECT_EQ(Check(With(Update, {{key, List({value})}}), With(Port, {{key, 5}})), DoesNotApply())
          << key << ": " << name;
    }
  }
}

TEST(ThunderboltCheck, FirmwareModeIsComparedAsZeroOrOne) {
  const auto inMode = [](bool mode) { return With(Port, {{"Firmware Mode", mode}}); };
  for (const PropertyValue& on : List({true, 1, 1.0})) {
    EXPECT_EQ(Check(With(Update, {{"Firmware Mode", on}}), inMode(true)), Applies());
    EXPECT_EQ(Check(With(Update, {{"Firmware Mode", on}}), inMode(false)), DoesNotApply());
  }
  for (const PropertyValue& off : List({false, 0, 0.0})) {
    EXPECT_EQ(Check(With(Update, {{"Firmware Mode", off}}), inMode(false)), Applies());
    EXPECT_EQ(Check(With(Update, {{"Firmware Mode", off}}), inMode(true)), DoesNotApply());
  }
  EXPECT_EQ(Check(With(Update, {{"Firmware Mode", 2}}), inMode(true)), DoesNotApply());
}

TEST(ThunderboltCheck, FirmwareModesZeroAndOneAcceptEither) {
  const auto update = With(Update, {{"Firmware Mode", List({0, 1})}});
  EXPECT_EQ(Check(update, With(Port, {{"Firmware Mode", true}})), Applies());
  EXPECT_EQ(Check(update, With(Port, {{"Firmware Mode", false}})), Applies());
}

TEST(ThunderboltCheck, AFirmwareModeOfOneIsRejectedByAPortWithoutOne) {
  EXPECT_EQ(Check(With(Update, {{"Firmware Mode", 1}}), Without(Port, "Firmware Mode")),
            DoesNotApply());
}

}  // namespace
}  // namespace fernwick
