#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

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
using testing::Without;

CheckResult Check(const Record& personality, const Record& hardware) {
  return ResultOf(CheckLegacyThunderboltRequirements, personality, {hardware});
}

// The same with the version check bypassed.
CheckResult Bypassed(const Record& personality, const Record& hardware) {
  return ResultOf(CheckLegacyThunderboltRequirements, personality, {hardware, 0, true});
}

// The installed version is 41.05, as a record stores it.
const Record Controller = {
    {"RID", 3},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 2},
    {"Ridge UID", 0x5A3},
    {"Version", 41.050000000999994},
    {"Engineering Version", 0},
};

const Record Update = {
    {"Version", 42},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 2},
};

constexpr const char* RidgeSilicon[] = {
    "Ridge Silicon Vendor ID",
    "Ridge Silicon Device ID",
    "Ridge Silicon Revision",
};

constexpr const char* ConstrainingKeys[] = {
    "RID",       "Ridge Silicon Vendor ID", "Ridge Silicon Device ID", "Ridge Silicon Revision",
    "Ridge UID",
};

TEST(LegacyThunderboltCheck, NeedsTheVersionAndTheRidgeSilicon) {
  EXPECT_EQ(Check(Update, Controller), Applies());
}

TEST(LegacyThunderboltCheck, NothingAtAllDoesNotApply) {
  EXPECT_EQ(Check({}, {}), DoesNotApply());
  EXPECT_EQ(Check({}, Controller), DoesNotApply());
  EXPECT_EQ(Check(Update, {}), DoesNotApply());
}

TEST(LegacyThunderboltCheck, TheBoardRevisionIsIgnored) {
  const auto update = With(Update, {{"MinBoardRevision", 9}, {"MaxBoardRevision", "x"}});
  for (const std::uint8_t revision : std::initializer_list<std::uint8_t>{0, 1, 9, 255}) {
    EXPECT_EQ(ResultOf(CheckLegacyThunderboltRequirements, update, {Controller, revision}),
              Applies());
  }
}

TEST(LegacyThunderboltCheck, EngineeringFirmwareIsAcceptedWhereTheLegacyUsbcCheckRejectsIt) {
  const auto controller = With(Controller, {{"Engineering Version", 64}});
  EXPECT_EQ(Check(Update, controller), Applies());
  EXPECT_EQ(ResultOf(CheckLegacyUsbcRequirements, Update, {controller}), DoesNotApply());
}

TEST(LegacyThunderboltCheck, AnEqualVersionIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Version", 41.050000000999994}}), Controller), DoesNotApply());
}

TEST(LegacyThunderboltCheck, BypassedAnEqualVersionIsAccepted) {
  EXPECT_EQ(Bypassed(With(Update, {{"Version", 41.050000000999994}}), Controller), Applies());
}

TEST(LegacyThunderboltCheck, AMissingVersionIsRejectedSilently) {
  EXPECT_EQ(Check(Without(Update, "Version"), Controller), DoesNotApply());
  EXPECT_EQ(Check(Update, Without(Controller, "Version")), DoesNotApply());
}

TEST(LegacyThunderboltCheck, AVersionWithoutTheStoredFractionIsNotNewer) {
  EXPECT_EQ(Check(With(Update, {{"Version", 41.05}}), Controller), DoesNotApply());
}

TEST(LegacyThunderboltCheck, AMaximumWithoutTheStoredFractionRejectsTheSameVersion) {
  EXPECT_EQ(Check(With(Update, {{"Existing Max Version", 41.05}}), Controller),
            DoesNotApply("** Max firmware version not met.  Aborting\n"));
}

TEST(LegacyThunderboltCheck, AMinimumWithoutTheStoredFractionAcceptsTheSameVersion) {
  EXPECT_EQ(Check(With(Update, {{"Existing Min Version", 41.05}}), Controller), Applies());
}

TEST(LegacyThunderboltCheck, AVersionBelowTheMinimumIsReported) {
  EXPECT_EQ(Check(With(Update, {{"Existing Min Version", 41.06}}), Controller),
            DoesNotApply("** Min firmware version not met.  Aborting\n"));
}

TEST(LegacyThunderboltCheck, BoundsThatAreNotNumbersAreReported) {
  EXPECT_EQ(Check(With(Update, {{"Existing Min Version", "41"}}), Controller),
            DoesNotApply("** minversion bad object type in personality\n"));
  EXPECT_EQ(Check(With(Update, {{"Existing Max Version", "42"}}), Controller),
            DoesNotApply("** maxversion bad object type in personality\n"));
}

TEST(LegacyThunderboltCheck, ARidgeSiliconKeyThatThePersonalityLacksIsRejectedSilently) {
  for (const auto* key : RidgeSilicon) {
    EXPECT_EQ(Check(Without(Update, key), Controller), DoesNotApply()) << key;
  }
}

TEST(LegacyThunderboltCheck, ARidgeSiliconKeyThatTheControllerLacksIsRejectedSilently) {
  for (const auto* key : RidgeSilicon) {
    EXPECT_EQ(Check(Update, Without(Controller, key)), DoesNotApply()) << key;
  }
}

TEST(LegacyThunderboltCheck, ARidgeSiliconKeyThatNeitherHasIsRejectedSilently) {
  for (const auto* key : RidgeSilicon) {
    EXPECT_EQ(Check(Without(Update, key), Without(Controller, key)), DoesNotApply()) << key;
  }
}

TEST(LegacyThunderboltCheck, ARidListAcceptsTheControllersThatItContains) {
  const auto update = With(Update, {{"RID", List({0, 1})}});
  EXPECT_EQ(Check(update, With(Controller, {{"RID", 0}})), Applies());
  EXPECT_EQ(Check(update, With(Controller, {{"RID", 1}})), Applies());
  EXPECT_EQ(Check(update, With(Controller, {{"RID", 2}})), DoesNotApply());
}

TEST(LegacyThunderboltCheck, ARidRejectsAControllerWithoutOneSilently) {
  EXPECT_EQ(Check(With(Update, {{"RID", 2}}), Without(Controller, "RID")), DoesNotApply());
}

TEST(LegacyThunderboltCheck, WithoutARidInThePersonalityAnyControllerIsAccepted) {
  EXPECT_EQ(Check(Update, With(Controller, {{"RID", 9}})), Applies());
  EXPECT_EQ(Check(Update, Without(Controller, "RID")), Applies());
}

TEST(LegacyThunderboltCheck, ARidgeUidAcceptsTheControllersThatItNames) {
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 0x5A3}}), Controller), Applies());
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", List({0x5A2, 0x5A3})}}), Controller), Applies());
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 0x5A4}}), Controller), DoesNotApply());
}

TEST(LegacyThunderboltCheck, WithoutARidgeUidInThePersonalityAnyControllerIsAccepted) {
  EXPECT_EQ(Check(Update, Without(Controller, "Ridge UID")), Applies());
}

TEST(LegacyThunderboltCheck, ARidgeUidThatTheControllerLacksIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 0x5A3}}), Without(Controller, "Ridge UID")),
            DoesNotApply());
}

TEST(LegacyThunderboltCheck, ARidgeUidThatIsTextIsRejectedSilently) {
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", "1443"}}), Controller), DoesNotApply());
  EXPECT_EQ(
      Check(With(Update, {{"Ridge UID", "0x5A3"}}), With(Controller, {{"Ridge UID", "0x5A3"}})),
      DoesNotApply());
}

TEST(LegacyThunderboltCheck, AnEmptyListOfRidgeUidsIsRejected) {
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", Array()}}), Controller), DoesNotApply());
}

TEST(LegacyThunderboltCheck, ARidgeUidOf64BitsIsComparedExactly) {
  const auto controller = With(Controller, {{"Ridge UID", 0xFFFFFFFFFFFFFFFF}});
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 0xFFFFFFFFFFFFFFFF}}), controller), Applies());
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", -1}}), controller), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 0xFFFFFFFFFFFFFFFE}}), controller), DoesNotApply());
  EXPECT_EQ(Check(With(Update, {{"Ridge UID", 18446744073709551616.0}}), controller),
            DoesNotApply());
}

TEST(LegacyThunderboltCheck, AKeyThatIsNotANumberIsRejectedSilently) {
  for (const auto* key : ConstrainingKeys) {
    for (const auto& [name, value] : NonNumbers()) {
      EXPECT_EQ(Check(With(Update, {{key, List({value})}}), With(Controller, {{key, 5}})),
                DoesNotApply())
          << key << ": " << name;
    }
  }
}

TEST(LegacyThunderboltCheck, AnotherNumberIsRejectedSilentlyUnderEachKey) {
  for (const auto* key : ConstrainingKeys) {
    EXPECT_EQ(Check(With(Update, {{key, -7}}), Controller), DoesNotApply()) << key;
  }
}

TEST(LegacyThunderboltCheck, AListThatContainsTheControllersValueIsAcceptedUnderEachKey) {
  for (const auto* key : ConstrainingKeys) {
    const Array list = List({-7, *Controller.Find(key), "x"});
    EXPECT_EQ(Check(With(Update, {{key, list}}), Controller), Applies()) << key;
  }
}

TEST(LegacyThunderboltCheck, BypassedWithoutAnInstalledVersionTheOtherKeysDecide) {
  const auto controller = Without(Controller, "Version");
  EXPECT_EQ(Bypassed(Update, controller), Applies("** No current firmware version?\n"));
  EXPECT_EQ(Bypassed(With(Update, {{"RID", 9}}), controller),
            DoesNotApply("** No current firmware version?\n"));
  EXPECT_EQ(Bypassed(With(Update, {{"Ridge UID", 9}}), controller),
            DoesNotApply("** No current firmware version?\n"));
}

TEST(LegacyThunderboltCheck, KeysOfTheOtherChecksAreIgnored) {
  const auto update = With(Update, {{"Port Address", 9},
                                    {"MinBoardRevision", 9},
                                    {"Port Silicon Vendor ID", 9},
                                    {"Port Silicon Revision", 9},
                                    {"Port OTP Revision", 9},
                                    {"Port UUID", "x"},
                                    {"Device Model Name", "x"},
                                    {"Device Model ID", 9},
                                    {"Firmware Mode", 9}});
  EXPECT_EQ(Check(update, Controller), Applies());
}

}  // namespace
}  // namespace fernwick
