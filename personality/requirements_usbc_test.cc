#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "personality/requirements.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
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
using testing::MissingOtpRevision;
using testing::MissingRevision;
using testing::MissingUuid;
using testing::NonNumbers;
using testing::NoVersion;
using testing::ResultOf;
using testing::With;
using testing::Without;

const Record Port = {
    {"RID", 2},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Port OTP Revision", 1},
    {"Port Address", 0},
    {"Version", 171},
    {"Port UUID", "b0A1"},
};

const Record Update = {
    {"Version", 172},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
};

// An update that names every key.
const Record FullUpdate = With(Update, {{"RID", 2},
                                        {"Port Address", 0},
                                        {"MinBoardRevision", 3},
                                        {"MaxBoardRevision", 3},
                                        {"Port OTP Revision", 1},
                                        {"Port UUID", List({"b0A1"})}});

constexpr const char* NumberKeys[] = {
    "Port Address",           "RID",
    "Port Silicon Vendor ID", "Port Silicon Device ID",
    "Port Silicon Revision",  "Port OTP Revision",
};

CheckResult Check(const Record& personality, const Record& hardware,
                  std::uint8_t boardRevision = 3) {
  return ResultOf(CheckUsbcRequirements, personality, {hardware, boardRevision});
}

// The same with the version check bypassed.
CheckResult Bypassed(const Record& personality, const Record& hardware,
                     std::uint8_t boardRevision = 3) {
  return ResultOf(CheckUsbcRequirements, personality, {hardware, boardRevision, true});
}

TEST(UsbcCheck, NeedsTheVersionAndThePortSilicon) {
  EXPECT_EQ(Check(Update, Port), Applies());
}

TEST(UsbcCheck, AcceptsAnUpdateWhoseEveryKeyFits) {
  EXPECT_EQ(Check(FullUpdate, Port), Applies());
}

TEST(UsbcCheck, NothingAtAllDoesNotApply) {
  EXPECT_EQ(Check({}, {}), DoesNotApply());
  EXPECT_EQ(Check({}, Port), DoesNotApply());
  EXPECT_EQ(Check(Update, {}), DoesNotApply());
}

TEST(UsbcCheck, BypassedWithEmptyRecordsOnlyTheVersionIsReported) {
  EXPECT_EQ(Bypassed({}, {}), DoesNotApply(NoVersion));
}

TEST(UsbcCheck, AVersionThatIsNotNewerIsRejectedSilentlyAlsoWithoutASiliconRevision) {
  const auto update = Without(With(Update, {{"Version", 171}}), "Port Silicon Revision");
  EXPECT_EQ(Check(update, Port), DoesNotApply());
}

TEST(UsbcCheck, TheWindowIsCheckedFirst) {
  EXPECT_EQ(
      Check(With(Without(Update, "Port Silicon Revision"), {{"Existing Min Version", 172}}), Port),
      DoesNotApply("** Min firmware version not met.  Aborting\n"));
  EXPECT_EQ(Check(With(FullUpdate, {{"Existing Max Version", "x"}, {"RID", 9}}), Port),
            DoesNotApply("** maxversion bad object type in personality\n"));
}

TEST(UsbcCheck, EngineeringFirmwareIsRejectedSilently) {
  EXPECT_EQ(Check(Update, With(Port, {{"Engineering Version", 64}})), DoesNotApply());
}

TEST(UsbcCheck, AnotherAddressIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Port Address", 1}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Without(Update, "Port Silicon Revision"), {{"Port Address", 1}}), Port),
            DoesNotApply());
}

TEST(UsbcCheck, ARidIsCheckedSilently) {
  EXPECT_EQ(Check(With(Update, {{"RID", 2}}), Port), Applies());
  EXPECT_EQ(Check(With(Update, {{"RID", List({1, 2})}}), Port), Applies());
  EXPECT_EQ(Check(With(Update, {{"RID", 3}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"RID", 2}}), Without(Port, "RID")), DoesNotApply());
  EXPECT_EQ(Check(Update, Without(Port, "RID")), Applies());
}

TEST(UsbcCheck, EqualBoundsAcceptThatBoardRevisionOnly) {
  const auto update = With(Update, {{"MinBoardRevision", 3}, {"MaxBoardRevision", 3}});
  for (int revision = 0; revision <= 255; ++revision) {
    EXPECT_EQ(Check(update, Port, static_cast<std::uint8_t>(revision)),
              revision == 3 ? Applies() : DoesNotApply())
        << revision;
  }
}

TEST(UsbcCheck, AMinimumAboveTheBoardRevisionIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", 4}}), Port, 3), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", 3.5}}), Port, 3), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", 3}}), Port, 3), Applies());
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", -1}}), Port, 0), Applies());
}

TEST(UsbcCheck, AMaximumBelowTheBoardRevisionIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", 2}}), Port, 3), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", 2.9}}), Port, 3), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", 3}}), Port, 3), Applies());
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", 0xFFFFFFFFFFFFFFFF}}), Port, 255), Applies());
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", -1}}), Port, 0), DoesNotApply());
}

TEST(UsbcCheck, WithoutBoundsAnyBoardRevisionIsAccepted) {
  for (int revision = 0; revision <= 255; ++revision) {
    EXPECT_EQ(Check(Update, Port, static_cast<std::uint8_t>(revision)), Applies()) << revision;
  }
}

TEST(UsbcCheck, ABoardRevisionOf255IsNotNegative) {
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", 255}}), Port, 255), Applies());
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", 254}}), Port, 255), DoesNotApply());
}

TEST(UsbcCheck, ABoundThatIsNotANumberIsRejectedSilently) {
  for (const auto& [name, bound] : NonNumbers()) {
    EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", bound}}), Port, 5), DoesNotApply()) << name;
    EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", bound}}), Port, 5), DoesNotApply()) << name;
  }
}

TEST(UsbcCheck, ABooleanBoundIsOneOrZero) {
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", true}}), Port, 1), Applies());
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", true}}), Port, 0), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"MaxBoardRevision", false}}), Port, 1), DoesNotApply());
}

TEST(UsbcCheck, ABoundThatIsNanExcludesNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Check(With(Update, {{"MinBoardRevision", nan}, {"MaxBoardRevision", nan}}), Port),
            Applies());
}

TEST(UsbcCheck, TheHardwaresBoardRevisionBoundsAreNotRead) {
  EXPECT_EQ(Check(Update, With(Port, {{"MinBoardRevision", 9}, {"MaxBoardRevision", "x"}})),
            Applies());
}

TEST(UsbcCheck, AMissingVendorIsRejectedSilently) {
  EXPECT_EQ(Check(Without(Update, "Port Silicon Vendor ID"), Port), DoesNotApply());
  EXPECT_EQ(Check(Update, Without(Port, "Port Silicon Vendor ID")), DoesNotApply());
}

TEST(UsbcCheck, AMissingDeviceIsRejectedSilently) {
  EXPECT_EQ(Check(Without(Update, "Port Silicon Device ID"), Port), DoesNotApply());
  EXPECT_EQ(Check(Update, Without(Port, "Port Silicon Device ID")), DoesNotApply());
}

TEST(UsbcCheck, AMissingSiliconRevisionIsReportedWhicheverLacksIt) {
  const auto update = Without(Update, "Port Silicon Revision");
  const auto port = Without(Port, "Port Silicon Revision");
  EXPECT_EQ(Check(update, Port), DoesNotApply(MissingRevision));
  EXPECT_EQ(Check(Update, port), DoesNotApply(MissingRevision));
  EXPECT_EQ(Check(update, port), DoesNotApply(MissingRevision));
}

TEST(UsbcCheck, AnotherSiliconRevisionIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Port Silicon Revision", 8}}), Port), DoesNotApply());
}

TEST(UsbcCheck, ADeviceThatIsTextIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Port Silicon Device ID", "18"}}), Port), DoesNotApply());
}

TEST(UsbcCheck, AnEmptyListOfDevicesIsRejected) {
  EXPECT_EQ(Check(With(Update, {{"Port Silicon Device ID", Array()}}), Port), DoesNotApply());
}

TEST(UsbcCheck, AListThatContainsTheDeviceIsAccepted) {
  EXPECT_EQ(Check(With(Update, {{"Port Silicon Device ID", List({17, 18})}}), Port), Applies());
}

TEST(UsbcCheck, ANegativeDeviceIsItself) {
  const auto port = With(Port, {{"Port Silicon Device ID", -2147483647}});
  EXPECT_EQ(Check(With(Update, {{"Port Silicon Device ID", -2147483647}}), port), Applies());
  EXPECT_EQ(Check(With(Update, {{"Port Silicon Device ID", 0x80000001}}), port), DoesNotApply());
}

TEST(UsbcCheck, AnOtpRevisionThatThePortLacksIsReported) {
  EXPECT_EQ(Check(With(Update, {{"Port OTP Revision", 2}}), Without(Port, "Port OTP Revision")),
            DoesNotApply(MissingOtpRevision));
}

TEST(UsbcCheck, ATextOtpRevisionThatThePortLacksIsReportedTheSame) {
  EXPECT_EQ(Check(With(Update, {{"Port OTP Revision", "2"}}), Without(Port, "Port OTP Revision")),
            DoesNotApply(MissingOtpRevision));
}

TEST(UsbcCheck, AnotherOtpRevisionIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Port OTP Revision", 2}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Port OTP Revision", "1"}}), Port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Port OTP Revision", Array()}}), Port), DoesNotApply());
}

TEST(UsbcCheck, WithoutAnOtpRevisionInThePersonalityAnyPortIsAccepted) {
  EXPECT_EQ(Check(Update, Without(Port, "Port OTP Revision")), Applies());
}

TEST(UsbcCheck, ASingleUuidIsRejectedSilentlyAlsoWhenItIsThePorts) {
  EXPECT_EQ(Check(With(Update, {{"Port UUID", "b0A1"}}), Port), DoesNotApply());
}

TEST(UsbcCheck, AListThatContainsThePortsUuidIsAccepted) {
  EXPECT_EQ(Check(With(Update, {{"Port UUID", List({"b0A1"})}}), Port), Applies());
  EXPECT_EQ(Check(With(Update, {{"Port UUID", List({"c2", 5, "b0A1"})}}), Port), Applies());
}

TEST(UsbcCheck, AUuidInOtherLetterCaseIsRejected) {
  EXPECT_EQ(Check(With(Update, {{"Port UUID", List({"B0A1", "b0a1"})}}), Port), DoesNotApply());
}

TEST(UsbcCheck, AUuidThatThePortLacksIsReported) {
  const auto port = Without(Port, "Port UUID");
  EXPECT_EQ(Check(With(Update, {{"Port UUID", List({"b0A1"})}}), port), DoesNotApply(MissingUuid));
  EXPECT_EQ(Check(With(Update, {{"Port UUID", "b0A1"}}), port), DoesNotApply(MissingUuid));
  EXPECT_EQ(Check(With(Update, {{"Port UUID", Array()}}), port), DoesNotApply(MissingUuid));
}

TEST(UsbcCheck, WithoutAUuidInThePersonalityAnyPortIsAccepted) {
  EXPECT_EQ(Check(Update, Without(Port, "Port UUID")), Applies());
}

TEST(UsbcCheck, AUuidThatIsNotAListOfStringsIsRejectedSilently) {
  for (const PropertyValue& uuid :
       List({5, 5.0, true, Bytes("b0A1"), Dict({{"b0A1", "b0A1"}}), Array(), List({5}),
             List({Bytes("b0A1")}), testing::NestedArrays(2, "b0A1")})) {
    EXPECT_EQ(Check(With(Update, {{"Port UUID", uuid}}), Port), DoesNotApply())
        << ::testing::PrintToString(uuid);
  }
}

TEST(UsbcCheck, ANumberNeverEqualsAUuidOfTheSameKind) {
  const auto port = With(Port, {{"Port UUID", 5}});
  EXPECT_EQ(Check(With(Update, {{"Port UUID", 5}}), port), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Port UUID", List({5})}}), port), DoesNotApply());
}

TEST(UsbcCheck, ANumberKeyOfAnotherKindIsRejectedSilently) {
  for (const auto* key : NumberKeys) {
    for (const auto& [name, value] : NonNumbers()) {
      EXPECT_EQ(Check(With(FullUpdate, {{key, List({value})}}), With(Port, {{key, 5}})),
                DoesNotApply())
          << key << ": " << name;
    }
    EXPECT_EQ(Check(With(FullUpdate, {{key, "5"}}), With(Port, {{key, 5}})), DoesNotApply()) << key;
    EXPECT_EQ(Check(With(FullUpdate, {{key, -7}}), Port), DoesNotApply()) << key;
  }
}

TEST(UsbcCheck, ANumberKeyAcceptsAListOfEveryKindOfNumber) {
  for (const auto* key : NumberKeys) {
    EXPECT_EQ(Check(With(FullUpdate, {{key, List({"x", *Port.Find(key), -7})}}), Port), Applies())
        << key;
  }
}

// Each row breaks one more requirement, from the last to the first; only the first that fails
// is reported.
TEST(UsbcCheck, OnlyTheFirstFailureIsReported) {
  Record update = FullUpdate;
  Record port = Without(Port, "Port UUID");
  EXPECT_EQ(Check(update, port), DoesNotApply(MissingUuid));
  port = Without(port, "Port OTP Revision");
  EXPECT_EQ(Check(update, port), DoesNotApply(MissingOtpRevision));
  port = Without(port, "Port Silicon Revision");
  EXPECT_EQ(Check(update, port), DoesNotApply(MissingRevision));
  EXPECT_EQ(Check(update, Without(port, "Port Silicon Device ID")), DoesNotApply());
  EXPECT_EQ(Check(update, Without(port, "Port Silicon Vendor ID")), DoesNotApply());
  EXPECT_EQ(Check(update, port, 4), DoesNotApply());
  EXPECT_EQ(Check(update, Without(port, "RID")), DoesNotApply());
  EXPECT_EQ(Check(update, Without(port, "Port Address")), DoesNotApply());
  EXPECT_EQ(Check(With(update, {{"Existing Max Version", 170}}), port),
            DoesNotApply("** Max firmware version not met.  Aborting\n"));
}

TEST(UsbcCheck, BypassedWithoutAnInstalledVersionBothAreReported) {
  EXPECT_EQ(Bypassed(FullUpdate, Without(Without(Port, "Version"), "Port UUID")),
            DoesNotApply(std::string(NoVersion) + MissingUuid));
  EXPECT_EQ(Bypassed(FullUpdate, Without(Port, "Version")), Applies(NoVersion));
}

TEST(UsbcCheck, KeysOfTheThunderboltChecksAreIgnored) {
  const auto update = With(Update, {{"Ridge Silicon Vendor ID", 9},
                                    {"Ridge UID", "x"},
                                    {"Device Model Name", 9},
                                    {"Firmware Mode", "x"}});
  EXPECT_EQ(Check(update, Port), Applies());
}

}  // namespace
}  // namespace fernwick
