#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>

#include "personality/requirements.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/odd_values.h"
#include "testing/requirement_diagnostics.h"

namespace fernwick {
namespace {

using testing::Applies;
using testing::BadMaximum;
using testing::BadMinimum;
using testing::CheckResult;
using testing::DoesNotApply;
using testing::List;
using testing::MaximumNotMet;
using testing::MinimumNotMet;
using testing::NonNumbers;
using testing::NoVersion;
using testing::ResultOf;
using testing::SingleEntry;
using testing::With;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint64_t MaxUnsigned = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t TwoTo53 = std::uint64_t{1} << 53;

constexpr std::nullopt_t Absent = std::nullopt;

// What a Thunderbolt personality and its controller have besides the version.
const Record RidgeSilicon = {
    {"Ridge Silicon Vendor ID", 1}, {"Ridge Silicon Device ID", 2}, {"Ridge Silicon Revision", 3}};

enum class VersionCheck { Done, Bypassed };

// Without more in either record, each check is the window: this one with the test for engineering
// firmware.
CheckResult WindowForReleasedFirmware(const Record& personality, const Record& hardware,
                                      VersionCheck check = VersionCheck::Done) {
  return ResultOf(CheckLegacyUsbcRequirements, personality,
                  {hardware, 3, check == VersionCheck::Bypassed});
}

// And this one without it.
CheckResult WindowForAnyFirmware(const Record& personality, const Record& hardware,
                                 VersionCheck check = VersionCheck::Done) {
  const auto update = With(RidgeSilicon, personality);
  const auto controller = With(RidgeSilicon, hardware);
  return ResultOf(CheckLegacyThunderboltRequirements, update,
                  {controller, 3, check == VersionCheck::Bypassed});
}

// The window of a controller that reports nothing of engineering firmware, for which that test
// makes no difference.
CheckResult Window(const Record& personality, const Record& hardware,
                   VersionCheck check = VersionCheck::Done) {
  EXPECT_EQ(hardware.Find("Engineering Version"), nullptr);
  const auto result = WindowForReleasedFirmware(personality, hardware, check);
  EXPECT_EQ(WindowForAnyFirmware(personality, hardware, check), result);
  return result;
}

CheckResult BypassedWindow(const Record& personality, const Record& hardware) {
  return Window(personality, hardware, VersionCheck::Bypassed);
}

// Whether firmware of a version may be installed over another where nothing else is asked.
CheckResult Replacing(const std::optional<PropertyValue>& installed,
                      const std::optional<PropertyValue>& offered,
                      VersionCheck check = VersionCheck::Done) {
  return Window(SingleEntry("Version", offered), SingleEntry("Version", installed), check);
}

CheckResult BypassedReplacing(const std::optional<PropertyValue>& installed,
                              const std::optional<PropertyValue>& offered) {
  return Replacing(installed, offered, VersionCheck::Bypassed);
}

// The window of 100 over the installed version with these bounds.
CheckResult Bounded(const PropertyValue& installed, const Record& bounds) {
  return Window(With({{"Version", 100}}, bounds), {{"Version", installed}});
}

TEST(FirmwareVersionWindow, AcceptsOnlyAStrictlyNewerVersion) {
  EXPECT_EQ(Replacing(4, 5), Applies());
  EXPECT_EQ(Replacing(5, 5), DoesNotApply());
  EXPECT_EQ(Replacing(6, 5), DoesNotApply());
  EXPECT_EQ(Replacing(-1, 0), Applies());
  EXPECT_EQ(Replacing(-1, MaxUnsigned), Applies());
  EXPECT_EQ(Replacing(MaxUnsigned, -1), DoesNotApply());
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

TEST(FirmwareVersionWindow, AVersionThatIsNotANumberFailsSilently) {
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(Replacing(1, version), DoesNotApply()) << name;
    EXPECT_EQ(Replacing(version, 3), DoesNotApply()) << name;
  }
  EXPECT_EQ(Replacing(4, List({5})), DoesNotApply());
}

const Record Version4 = {{"Version", 4}};
const Record Version5 = {{"Version", 5}};

TEST(FirmwareVersionWindow, EngineeringFirmwareIsRejectedOnlyWhereItIsTestedFor) {
  for (const PropertyValue& engineering :
       List({64, 128, 192, 1, -1, MaxUnsigned, 1.0, 64.5, true})) {
    const auto hardware = With(Version4, {{"Engineering Version", engineering}});
    EXPECT_EQ(WindowForReleasedFirmware(Version5, hardware), DoesNotApply())
        << ::testing::PrintToString(engineering);
    EXPECT_EQ(WindowForAnyFirmware(Version5, hardware), Applies())
        << ::testing::PrintToString(engineering);
  }
}

TEST(FirmwareVersionWindow, EngineeringVersionZeroIsAccepted) {
  for (const PropertyValue& engineering : List({0, 0.0, false, 0.5, -0.5, NotANumber})) {
    const auto hardware = With(Version4, {{"Engineering Version", engineering}});
    EXPECT_EQ(WindowForReleasedFirmware(Version5, hardware), Applies())
        << ::testing::PrintToString(engineering);
  }
  EXPECT_EQ(WindowForReleasedFirmware(Version5, Version4), Applies());
}

TEST(FirmwareVersionWindow, ThePersonalitysEngineeringVersionIsNotRead) {
  EXPECT_EQ(Window(With(Version5, {{"Engineering Version", 64}}), Version4), Applies());
}

TEST(FirmwareVersionWindow, BypassedAcceptsAnyVersion) {
  EXPECT_EQ(BypassedReplacing(4, 5), Applies());
  EXPECT_EQ(BypassedReplacing(5, 5), Applies());
  EXPECT_EQ(BypassedReplacing(6, 5), Applies());
  EXPECT_EQ(BypassedReplacing(4, Absent), Applies());
  EXPECT_EQ(BypassedReplacing(NotANumber, NotANumber), Applies());
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(BypassedReplacing(1, version), Applies()) << name;
    EXPECT_EQ(BypassedReplacing(version, 3), Applies()) << name;
  }
}

TEST(FirmwareVersionWindow, BypassedAcceptsEngineeringFirmware) {
  const auto hardware = With(Version4, {{"Engineering Version", 64}});
  EXPECT_EQ(WindowForReleasedFirmware(Version5, hardware, VersionCheck::Bypassed), Applies());
  EXPECT_EQ(WindowForReleasedFirmware({}, hardware, VersionCheck::Bypassed), Applies());
}

TEST(FirmwareVersionWindow, BypassedStillChecksTheBounds) {
  EXPECT_EQ(BypassedWindow({{"Existing Min Version", 5}}, Version4), DoesNotApply(MinimumNotMet));
  EXPECT_EQ(BypassedWindow({{"Existing Max Version", 3}}, Version4), DoesNotApply(MaximumNotMet));
  EXPECT_EQ(BypassedWindow({{"Existing Min Version", 4}, {"Existing Max Version", 4}}, Version4),
            Applies());
}

TEST(FirmwareVersionWindow, BypassedWithoutAnInstalledVersionSatisfiesItWhateverTheBounds) {
  EXPECT_EQ(BypassedWindow({}, {}), Applies(NoVersion));
  EXPECT_EQ(BypassedWindow(Version5, {}), Applies(NoVersion));
  EXPECT_EQ(BypassedWindow({{"Existing Min Version", 9}, {"Existing Max Version", 1}}, {}),
            Applies(NoVersion));
  EXPECT_EQ(BypassedWindow({{"Existing Min Version", "9"}, {"Existing Max Version", Array()}}, {}),
            Applies(NoVersion));
}

TEST(FirmwareVersionWindow, BypassedWithAnInstalledVersionThatIsNotANumberIsWithinEveryBound) {
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(BypassedWindow({{"Existing Min Version", 9}, {"Existing Max Version", 1}},
                             {{"Version", version}}),
              Applies())
        << name;
  }
  EXPECT_EQ(BypassedWindow({{"Existing Min Version", "9"}}, {{"Version", "4"}}),
            DoesNotApply(BadMinimum));
}

TEST(FirmwareVersionWindow, BothBoundsAreInclusive) {
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 5}}), Applies());
  EXPECT_EQ(Bounded(5, {{"Existing Max Version", 5}}), Applies());
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 5}, {"Existing Max Version", 5}}), Applies());
  EXPECT_EQ(Bounded(5, {{"Existing Min Version", 5.0}, {"Existing Max Version", 5.0}}), Applies());
}

TEST(FirmwareVersionWindow, AVersionBelowTheMinimumIsReported) {
  EXPECT_EQ(Bounded(4, {{"Existing Min Version", 5}}), DoesNotApply(MinimumNotMet));
  EXPECT_EQ(Bounded(4.999, {{"Existing Min Version", 5}}), DoesNotApply(MinimumNotMet));
  EXPECT_EQ(Bounded(-1, {{"Existing Min Version", false}}), DoesNotApply(MinimumNotMet));
}

TEST(FirmwareVersionWindow, AVersionAboveTheMaximumIsReported) {
  EXPECT_EQ(Bounded(6, {{"Existing Max Version", 5}}), DoesNotApply(MaximumNotMet));
  EXPECT_EQ(Bounded(5.5, {{"Existing Max Version", 5}}), DoesNotApply(MaximumNotMet));
  EXPECT_EQ(Bounded(41.050000000999994, {{"Existing Max Version", 41.05}}),
            DoesNotApply(MaximumNotMet));
}

TEST(FirmwareVersionWindow, BoundsAreComparedExactly) {
  const Record newest = {{"Version", MaxUnsigned}};
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

TEST(FirmwareVersionWindow, AMinimumThatIsNotANumberIsReported) {
  for (const auto& [name, bound] : NonNumbers()) {
    EXPECT_EQ(Bounded(5, {{"Existing Min Version", bound}}), DoesNotApply(BadMinimum)) << name;
  }
}

TEST(FirmwareVersionWindow, AMaximumThatIsNotANumberIsReported) {
  for (const auto& [name, bound] : NonNumbers()) {
    EXPECT_EQ(Bounded(5, {{"Existing Max Version", bound}}), DoesNotApply(BadMaximum)) << name;
  }
}

TEST(FirmwareVersionWindow, ReportsTheMinimumOnlyWhenBothBoundsFail) {
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
  EXPECT_EQ(WindowForReleasedFirmware({{"Version", 5}, {"Existing Max Version", 1}},
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
