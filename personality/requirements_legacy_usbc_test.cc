#include <gtest/gtest.h>

#include <optional>

#include "personality/requirements.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/odd_values.h"

namespace fernwick {
namespace {

using testing::Applies;
using testing::CheckResult;
using testing::DoesNotApply;
using testing::List;
using testing::NonNumbers;
using testing::ResultOf;
using testing::With;

CheckResult Check(const Record& personality, const Record& hardware) {
  return ResultOf(CheckLegacyUsbcRequirements, personality, {hardware});
}

// The same with the version check bypassed.
CheckResult Bypassed(const Record& personality, const Record& hardware) {
  return ResultOf(CheckLegacyUsbcRequirements, personality, {hardware, 0, true});
}

const Record Update = {{"Version", 5}};
const Record Port = {{"Port Address", 2}, {"Version", 4}};

// Whether an update for these addresses applies to the port at address 2.
CheckResult ForAddress(const PropertyValue& address) {
  return Check(With(Update, {{"Port Address", address}}), Port);
}

TEST(LegacyUsbcCheck, NeedsNoMoreThanANewerVersion) {
  EXPECT_EQ(Check(Update, Port), Applies());
  EXPECT_EQ(Check(Update, {{"Version", 4}}), Applies());
}

TEST(LegacyUsbcCheck, NothingAtAllDoesNotApply) {
  EXPECT_EQ(Check({}, {}), DoesNotApply());
}

TEST(LegacyUsbcCheck, AnEqualVersionIsRejectedSilently) {
  EXPECT_EQ(Check({{"Version", 5}}, {{"Version", 5}}), DoesNotApply());
}

TEST(LegacyUsbcCheck, AnOlderInstalledVersionIsAccepted) {
  EXPECT_EQ(Check({{"Version", 5}}, {{"Version", 4}}), Applies());
}

TEST(LegacyUsbcCheck, BypassedEqualAndOlderVersionsGoOnToTheBounds) {
  const Record update = {{"Version", 5}, {"Existing Max Version", 4}};
  EXPECT_EQ(Bypassed(update, {{"Version", 5}}),
            DoesNotApply("** Max firmware version not met.  Aborting\n"));
  EXPECT_EQ(Bypassed(update, {{"Version", 4}}), Applies());
}

TEST(LegacyUsbcCheck, APersonalityWithoutVersionIsRejectedSilently) {
  EXPECT_EQ(Check({}, Port), DoesNotApply());
}

TEST(LegacyUsbcCheck, BypassedAPersonalityWithoutVersionIsAccepted) {
  EXPECT_EQ(Bypassed({}, Port), Applies());
}

TEST(LegacyUsbcCheck, EngineeringVersionZeroOrAbsentIsAccepted) {
  EXPECT_EQ(Check(Update, With(Port, {{"Engineering Version", 0}})), Applies());
  EXPECT_EQ(Check(Update, Port), Applies());
}

TEST(LegacyUsbcCheck, EngineeringFirmwareIsRejectedSilently) {
  EXPECT_EQ(Check(Update, With(Port, {{"Engineering Version", 64}})), DoesNotApply());
  EXPECT_EQ(Check(Update, With(Port, {{"Engineering Version", 192}})), DoesNotApply());
}

TEST(LegacyUsbcCheck, BypassedTheEngineeringVersionIsIgnored) {
  EXPECT_EQ(Bypassed(Update, With(Port, {{"Engineering Version", 64}})), Applies());
}

TEST(LegacyUsbcCheck, AMinimumEqualToTheInstalledVersionIsMet) {
  EXPECT_EQ(Check({{"Version", 6}, {"Existing Min Version", 5}}, {{"Version", 5}}), Applies());
}

TEST(LegacyUsbcCheck, AMaximumEqualToTheInstalledVersionIsMet) {
  EXPECT_EQ(Check({{"Version", 6}, {"Existing Max Version", 5}}, {{"Version", 5}}), Applies());
}

TEST(LegacyUsbcCheck, AnInstalledVersionAboveTheMaximumIsReported) {
  EXPECT_EQ(Check({{"Version", 6}, {"Existing Max Version", 5}}, {{"Version", 5.5}}),
            DoesNotApply("** Max firmware version not met.  Aborting\n"));
}

TEST(LegacyUsbcCheck, AnInstalledVersionBelowTheMinimumIsReported) {
  EXPECT_EQ(Check({{"Version", 6}, {"Existing Min Version", 5}}, {{"Version", 4.5}}),
            DoesNotApply("** Min firmware version not met.  Aborting\n"));
}

TEST(LegacyUsbcCheck, AMinimumThatIsTextIsReportedBypassedOrNot) {
  const Record update = With(Update, {{"Existing Min Version", "5"}});
  const CheckResult bad = DoesNotApply("** minversion bad object type in personality\n");
  EXPECT_EQ(Check(update, Port), bad);
  EXPECT_EQ(Bypassed(update, Port), bad);
}

TEST(LegacyUsbcCheck, AMaximumThatIsTextIsReported) {
  EXPECT_EQ(Check(With(Update, {{"Existing Max Version", "5"}}), Port),
            DoesNotApply("** maxversion bad object type in personality\n"));
}

TEST(LegacyUsbcCheck, OfTwoBadBoundsOnlyTheMinimumIsReported) {
  EXPECT_EQ(
      Check(With(Update, {{"Existing Max Version", "5"}, {"Existing Min Version", "5"}}), Port),
      DoesNotApply("** minversion bad object type in personality\n"));
}

TEST(LegacyUsbcCheck, BypassedWithoutAnInstalledVersionTheAddressDecides) {
  const Record port = {{"Port Address", 2}};
  EXPECT_EQ(Bypassed(With(Update, {{"Port Address", 2}}), port),
            Applies("** No current firmware version?\n"));
  EXPECT_EQ(Bypassed(With(Update, {{"Port Address", 3}}), port),
            DoesNotApply("** No current firmware version?\n"));
}

TEST(LegacyUsbcCheck, AFailedWindowIsReportedAndTheAddressNotRead) {
  EXPECT_EQ(Check(With(Update, {{"Existing Min Version", 5}, {"Port Address", 2}}), Port),
            DoesNotApply("** Min firmware version not met.  Aborting\n"));
}

TEST(LegacyUsbcCheck, AnEmptyListOfAddressesIsRejected) {
  EXPECT_EQ(ForAddress(Array()), DoesNotApply());
}

TEST(LegacyUsbcCheck, AListThatContainsTheAddressIsAccepted) {
  EXPECT_EQ(ForAddress(List({1, 2})), Applies());
}

TEST(LegacyUsbcCheck, AListWithoutTheAddressIsRejected) {
  EXPECT_EQ(ForAddress(List({1, 3})), DoesNotApply());
}

TEST(LegacyUsbcCheck, AnIntegerAddressEqualsARealOne) {
  EXPECT_EQ(Check(With(Update, {{"Port Address", 2}}), With(Port, {{"Port Address", 2.0}})),
            Applies());
  EXPECT_EQ(ForAddress(2.0), Applies());
  EXPECT_EQ(ForAddress(2.5), DoesNotApply());
}

TEST(LegacyUsbcCheck, AnAddressThatIsTextIsRejected) {
  EXPECT_EQ(ForAddress("2"), DoesNotApply());
}

TEST(LegacyUsbcCheck, AnAddressThatIsNotANumberIsRejectedSilently) {
  for (const auto& [name, address] : NonNumbers()) {
    EXPECT_EQ(
        Check(With(Update, {{"Port Address", List({address})}}), With(Port, {{"Port Address", 5}})),
        DoesNotApply())
        << name;
  }
}

TEST(LegacyUsbcCheck, AnAddressThatThePortLacksIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Port Address", 2}}), {{"Version", 4}}), DoesNotApply());
}

TEST(LegacyUsbcCheck, WithoutAnAddressInThePersonalityAnyPortIsAccepted) {
  EXPECT_EQ(Check(Update, {{"Version", 4}}), Applies());
  EXPECT_EQ(Check(Update, With(Port, {{"Port Address", "2"}})), Applies());
  EXPECT_EQ(Check(Update, With(Port, {{"Port Address", -1}})), Applies());
}

TEST(LegacyUsbcCheck, KeysOfTheOtherChecksAreIgnored) {
  const Record update = With(Update, {{"RID", 9},
                                      {"MinBoardRevision", 9},
                                      {"Port Silicon Vendor ID", "x"},
                                      {"Port Silicon Revision", 9},
                                      {"Port OTP Revision", 9},
                                      {"Port UUID", "x"},
                                      {"Ridge UID", 9},
                                      {"Device Model Name", 9},
                                      {"Firmware Mode", 9}});
  EXPECT_EQ(Check(update, Port), Applies());
}

}  // namespace
}  // namespace fernwick
