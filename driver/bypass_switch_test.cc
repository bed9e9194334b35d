#include "driver/bypass_switch.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::Computer;
using testing::Dict;
using testing::List;
using testing::LoggingRegistry;

constexpr char Switch[] = "fernwick_bypass_usbc_updates";

Result<bool, Fault> Read(const Computer& computer) {
  LoggingRegistry registry(computer.Recorded());
  return ReadBypassSwitch(registry, Switch);
}

bool IsSet(const Computer& computer) {
  const auto isSet = Read(computer);
  EXPECT_TRUE(isSet) << Describe(isSet.Error());
  return isSet && *isSet;
}

Computer WithBootArguments(const PropertyValue& arguments) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args", arguments);
  return computer;
}

bool IsSetByBootArguments(const PropertyValue& arguments) {
  return IsSet(WithBootArguments(arguments));
}

// The fault of the boot arguments, if any.
std::optional<Fault> FaultOf(const char* arguments) {
  const auto isSet = Read(WithBootArguments(arguments));
  return isSet ? std::nullopt : std::optional(isSet.Error());
}

bool IsSetByNvram(const PropertyValue& variable) {
  Computer computer;
  computer.Set(computer.Options(), Switch, variable);
  return IsSet(computer);
}

TEST(ReadBypassSwitch, TokenAfterAnotherSetsIt) {
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

TEST(ReadBypassSwitch, LaterOneSetsItAfterAZero) {
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

TEST(ReadBypassSwitch, BlanksInARowYieldEmptyTokens) {
  EXPECT_TRUE(IsSetByBootArguments("  a  fernwick_bypass_usbc_updates=1  "));
  EXPECT_FALSE(IsSetByBootArguments(""));
  EXPECT_FALSE(IsSetByBootArguments(" "));
}

TEST(ReadBypassSwitch, OnlyBlanksSeparateTokens) {
  EXPECT_FALSE(IsSetByBootArguments("a\tfernwick_bypass_usbc_updates=1"));
}

TEST(ReadBypassSwitch, BootArgumentsOfAnotherKindContainNoTokens) {
  EXPECT_FALSE(IsSetByBootArguments(Bytes("fernwick_bypass_usbc_updates=1")));
  EXPECT_FALSE(IsSetByBootArguments(List({"fernwick_bypass_usbc_updates=1"})));
  EXPECT_FALSE(IsSetByBootArguments(Bytes("fernwick_bypass_usbc_updates")));
}

TEST(ReadBypassSwitch, BareSwitchNameIsAFault) {
  EXPECT_EQ(FaultOf("fernwick_bypass_usbc_updates"), Fault::BareSwitch);
  EXPECT_EQ(FaultOf("-v fernwick_bypass_usbc_updates fernwick_bypass_usbc_updates=0"),
            Fault::BareSwitch);
}

TEST(ReadBypassSwitch, BareSwitchNameAfterASettingOneIsAFault) {
  EXPECT_EQ(FaultOf("fernwick_bypass_usbc_updates=1 fernwick_bypass_usbc_updates"),
            Fault::BareSwitch);
  EXPECT_EQ(FaultOf("fernwick_bypass_usbc_updates=1 fernwick_bypass_usbc_updates="), std::nullopt);
}

TEST(ReadBypassSwitch, BareSwitchNameLeavesNvramUnread) {
  const auto computer = WithBootArguments("fernwick_bypass_usbc_updates");
  LoggingRegistry registry(computer.Recorded());
  EXPECT_FALSE(ReadBypassSwitch(registry, Switch));
  EXPECT_EQ(registry.Calls(),
            (std::vector<std::string>{"LookupEntryByPath IODeviceTree:/options",
                                      "GetProperty options boot-args", "ReleaseEntry options"}));
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
  EXPECT_FALSE(IsSetByNvram(List({"1"})));
  EXPECT_FALSE(IsSetByNvram(Dict({{"1", "1"}})));
}

TEST(ReadBypassSwitch, BootArgumentThatSetsItLeavesNvramUnread) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates=1");
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(ReadBypassSwitch(registry, Switch), (Result<bool, Fault>(true)));
  EXPECT_EQ(registry.Calls(),
            (std::vector<std::string>{"LookupEntryByPath IODeviceTree:/options",
                                      "GetProperty options boot-args", "ReleaseEntry options"}));
}

TEST(ReadBypassSwitch, WithoutOptionsEntryIsUnset) {
  const Recording empty;
  LoggingRegistry registry(empty);
  EXPECT_EQ(ReadBypassSwitch(registry, Switch), (Result<bool, Fault>(false)));
  EXPECT_EQ(registry.Calls(),
            (std::vector<std::string>{
                "LookupEntryByPath IODeviceTree:/options", "GetProperty none boot-args",
                "GetProperty none fernwick_bypass_usbc_updates", "ReleaseEntry none"}));
}

}  // namespace
}  // namespace fernwick
