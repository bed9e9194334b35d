#include "fuzz/foreseen_fault.h"

#include <gtest/gtest.h>

#include "testing/computer.h"

namespace fernwick::fuzz {
namespace {

using testing::Computer;

constexpr std::string_view BareSwitch = "a boot argument is a switch name without a value";
constexpr std::string_view NoUid = "a Thunderbolt controller has no UID";

const Dictionary Ports{{"USBC", Array{}}};
const Dictionary Controllers{{"LegacyThunderbolt", Array{}}};
const Dictionary AtRoot{{"Depth", 0}, {"Route String", 0}};

constexpr RunRequest Silent{.accepted = true};
constexpr RunRequest Verbose{.accepted = true, .verbose = true};

std::string_view FaultOf(const Computer& computer, const RunRequest& request) {
  return ForeseeRun(computer.Recorded(), request).fault;
}

RunRequest With(const Dictionary& configuration) {
  return {.accepted = true, .configuration = &configuration};
}

TEST(ForeseenFault, ASwitchIsReadBeforeTheCommandLine) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args", "-v fernwick_bypassversioncheck");
  EXPECT_EQ(FaultOf(computer, {}), BareSwitch);
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates");
  EXPECT_EQ(FaultOf(computer, {}), BareSwitch);
}

TEST(ForeseenFault, ABypassedRunDoesNotReadTheSecondSwitch) {
  Computer computer;
  computer.Set(computer.Options(), "boot-args",
               "fernwick_bypassversioncheck fernwick_bypass_usbc_updates=1");
  EXPECT_EQ(FaultOf(computer, Verbose), "");
  EXPECT_TRUE(ForeseeRun(computer.Recorded(), Verbose).isBypassed);
}

TEST(ForeseenFault, AControllerWithoutUidIsMetWhereItsInventoryIsTaken) {
  Computer computer;
  computer.AddThunderbolt("Ridge", AtRoot);
  EXPECT_EQ(FaultOf(computer, {}), "");
  EXPECT_EQ(FaultOf(computer, Silent), "");
  EXPECT_EQ(FaultOf(computer, Verbose), NoUid);
  EXPECT_EQ(FaultOf(computer, With(Ports)), "");
  EXPECT_EQ(FaultOf(computer, With(Controllers)), NoUid);
}

TEST(ForeseenFault, AListedPortKeepsTheListingFromTheControllers) {
  Computer computer;
  computer.AddThunderbolt("Ridge", AtRoot);
  computer.AddPort("Port", {});
  EXPECT_EQ(FaultOf(computer, Verbose), "");
}

TEST(ForeseenFault, AControllerAwayFromTheRootOfTheTopologyIsNotMet) {
  Computer computer;
  computer.AddThunderbolt("NoDepth", {{"Route String", 0}});
  computer.AddThunderbolt("Deep", {{"Depth", 1}, {"Route String", 0}});
  computer.AddThunderbolt("Routed", {{"Depth", 0}, {"Route String", 0x1p33 + 1}});
  EXPECT_EQ(FaultOf(computer, Verbose), "");
  computer.AddThunderbolt("LowBits", {{"Depth", false}, {"Route String", 0x1p33}});
  EXPECT_EQ(FaultOf(computer, Verbose), NoUid);
}

TEST(ForeseenFault, APortMeetsTheControllerAboveItWhereverThatIs) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("Ridge", {{"Depth", 1}});
  const auto between = computer.AddService(ridge, "Between", "", {});
  const auto port = computer.AddService(between, "Port", "QuinceHPMDevice", {{"Address", 1}});
  EXPECT_EQ(FaultOf(computer, With(Ports)), NoUid);
  EXPECT_EQ(FaultOf(computer, With(Controllers)), "");
  computer.Set(port, "Route String", 1);
  EXPECT_EQ(FaultOf(computer, With(Ports)), "");
  computer.Set(port, "Route String", "text");
  computer.Set(ridge, "UID", "any kind");
  EXPECT_EQ(FaultOf(computer, With(Ports)), "");
}

}  // namespace
}  // namespace fernwick::fuzz
