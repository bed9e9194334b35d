#include "driver/bypass_switch.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "testing/abnormal_end.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/system_log.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::Computer;
using testing::ExpectAbnormalEnd;
using testing::LoggingRegistry;
using testing::SystemLogOnStandardError;

constexpr char Switch[] = "fernwick_bypass_usbc_updates";

bool IsSet(const Computer& computer) {
  LoggingRegistry registry(computer.Recorded());
  return ReadBypassSwitch(registry, Switch);
}

bool IsSetByBootArguments(PropertyValue arguments) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args", std::move(arguments));
  return IsSet(computer);
}

bool IsSetByNvram(PropertyValue variable) {
  Computer computer;
  computer.Set(computer.Options(), Switch, std::move(variable));
  return IsSet(computer);
}

TEST(ReadBypassSwitch, TokenBehindAnotherSetsIt) {
  EXPECT_TRUE(IsSetByBootArguments("debug=0x44 fernwick_bypass_usbc_updates=1"));
}

TEST(ReadBypassSwitch, TokenZeroLeavesItToNvram) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates=0");
  EXPECT_FALSE(IsSet(computer));
  computer.Set(computer.Options(), Switch, "1");
  EXPECT_TRUE(IsSet(computer));
}

TEST(ReadBypassSwitch, LaterZeroDoesNotClearIt) {
  EXPECT_TRUE(
      IsSetByBootArguments("fernwick_bypass_usbc_updates=1 fernwick_bypass_usbc_updates=0"));
}

TEST(ReadBypassSwitch, LaterOneSetsItBehindAZero) {
  EXPECT_TRUE(
      IsSetByBootArguments("fernwick_bypass_usbc_updates=0 fernwick_bypass_usbc_updates=1"));
}

TEST(ReadBypassSwitch, EmptyValueSetsIt) {
  EXPECT_TRUE(IsSetByBootArguments("fernwick_bypass_usbc_updates="));
}

TEST(ReadBypassSwitch, AnythingButTheSingleCharacterZeroSetsIt) {
  EXPECT_TRUE(IsSetByBootArguments("fernwick_bypass_usbc_updates=yes"));
  EXPECT_TRUE(IsSetByBootArguments("fernwick_bypass_usbc_updates=00"));
  EXPECT_TRUE(IsSetByBootArguments("fernwick_bypass_usbc_updates=\t0"));
}

TEST(ReadBypassSwitch, OnlyTheSecondPieceIsTheValue) {
  EXPECT_FALSE(IsSetByBootArguments("fernwick_bypass_usbc_updates=0=1"));
  EXPECT_TRUE(IsSetByBootArguments("fernwick_bypass_usbc_updates==0"));
}

TEST(ReadBypassSwitch, OtherLetterCaseDoesNotSetIt) {
  EXPECT_FALSE(IsSetByBootArguments("fernwick_BYPASS_usbc_updates=1"));
}

TEST(ReadBypassSwitch, KeyMustBeTheWholeName) {
  EXPECT_FALSE(
      IsSetByBootArguments("fernwick_bypass_usbc_updates2=1 xfernwick_bypass_usbc_updates=1"
                           " fernwick_bypass_usbc_update=1"));
}

TEST(ReadBypassSwitch, BareTokensOfOtherNamesAreHarmless) {
  EXPECT_FALSE(IsSetByBootArguments("-v fernwick_bypassversioncheck =1 = "));
}

TEST(ReadBypassSwitch, BlanksInARowGiveEmptyTokens) {
  EXPECT_TRUE(IsSetByBootArguments("  a  fernwick_bypass_usbc_updates=1  "));
  EXPECT_FALSE(IsSetByBootArguments(""));
  EXPECT_FALSE(IsSetByBootArguments(" "));
}

TEST(ReadBypassSwitch, OnlyBlanksSeparateTokens) {
  EXPECT_FALSE(IsSetByBootArguments("a\tfernwick_bypass_usbc_updates=1"));
}

TEST(ReadBypassSwitch, BootArgumentsOfAnotherKindHoldNoTokens) {
  EXPECT_FALSE(IsSetByBootArguments(Bytes("fernwick_bypass_usbc_updates=1")));
  EXPECT_FALSE(IsSetByBootArguments(Array{"fernwick_bypass_usbc_updates=1"}));
  EXPECT_FALSE(IsSetByBootArguments(Bytes("fernwick_bypass_usbc_updates")));
}

TEST(ReadBypassSwitch, BareSwitchNameEndsTheProcess) {
  EXPECT_EXIT(IsSetByBootArguments("fernwick_bypass_usbc_updates"),
              ::testing::KilledBySignal(SIGABRT), "^$");
}

TEST(ReadBypassSwitch, BareSwitchNameTellsTheSystemLogWhy) {
  const SystemLogOnStandardError shown;
  ExpectAbnormalEnd([] { IsSetByBootArguments("fernwick_bypass_usbc_updates"); },
                    "log: a boot argument is a switch name without a value\n");
}

TEST(ReadBypassSwitch, BareSwitchNameBehindASettingOneEndsTheProcess) {
  EXPECT_EXIT(IsSetByBootArguments("fernwick_bypass_usbc_updates=1 fernwick_bypass_usbc_updates"),
              ::testing::KilledBySignal(SIGABRT), "^$");
}

TEST(ReadBypassSwitch, NvramDataIsText) {
  EXPECT_TRUE(IsSetByNvram(Bytes("1")));
  EXPECT_FALSE(IsSetByNvram(Bytes("0")));
}

TEST(ReadBypassSwitch, NvramZeroWithATerminatingByteSetsIt) {
  EXPECT_TRUE(IsSetByNvram(Bytes(std::string_view("0\0", 2))));
}

TEST(ReadBypassSwitch, NvramStringIsUsedAsItIs) {
  EXPECT_TRUE(IsSetByNvram("no"));
  EXPECT_FALSE(IsSetByNvram("0"));
}

TEST(ReadBypassSwitch, EmptyNvramVariableSetsIt) {
  EXPECT_TRUE(IsSetByNvram(""));
  EXPECT_TRUE(IsSetByNvram(Bytes("")));
}

TEST(ReadBypassSwitch, NvramDataThatIsNotUtf8DoesNotSetIt) {
  EXPECT_FALSE(IsSetByNvram(Bytes("\xFF")));
}

TEST(ReadBypassSwitch, NvramOfAnotherKindDoesNotSetIt) {
  EXPECT_FALSE(IsSetByNvram(1));
  EXPECT_FALSE(IsSetByNvram(1.0));
  EXPECT_FALSE(IsSetByNvram(true));
  EXPECT_FALSE(IsSetByNvram(Array{"1"}));
  EXPECT_FALSE(IsSetByNvram(Dictionary{{"1", "1"}}));
}

TEST(ReadBypassSwitch, BootArgumentThatSetsItLeavesNvramUnread) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates=1");
  LoggingRegistry registry(computer.Recorded());
  EXPECT_TRUE(ReadBypassSwitch(registry, Switch));
  EXPECT_EQ(registry.Calls(),
            (std::vector<std::string>{"LookupEntryByPath IODeviceTree:/options",
                                      "GetProperty options boot-args", "ReleaseEntry options"}));
}

TEST(ReadBypassSwitch, WithoutOptionsEntryIsUnset) {
  LoggingRegistry registry{Recording()};
  EXPECT_FALSE(ReadBypassSwitch(registry, Switch));
  EXPECT_EQ(registry.Calls(),
            (std::vector<std::string>{
                "LookupEntryByPath IODeviceTree:/options", "GetProperty none boot-args",
                "GetProperty none fernwick_bypass_usbc_updates", "ReleaseEntry none"}));
}

}  // namespace
}  // namespace fernwick
