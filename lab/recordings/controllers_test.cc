#include "lab/recordings/controllers.h"

#include <gtest/gtest.h>

#include "testing/computer.h"

namespace fernwick::lab {
namespace {

using Numbers = std::map<RegistryEntry, std::size_t>;

TEST(Controllers, AreThoseOfTheClassWithTheirNumberInTheInventory) {
  testing::Computer computer;
  const auto cabled =
      computer.AddThunderbolt("cabled", {{"UID", 1}, {"Depth", 1}, {"Route String", 0}});
  const auto own = computer.AddThunderbolt("own", {{"UID", 2}, {"Depth", 0}, {"Route String", 0}});
  const auto controllers = FindThunderboltControllers(computer.Recorded());
  EXPECT_EQ(controllers.numbers, (Numbers{{cabled, 0}, {own, 1}}));
  ASSERT_EQ(controllers.inventory.records.size(), 1u);
  EXPECT_EQ(*controllers.inventory.records.front().Find("RID"), PropertyValue(2));
  EXPECT_FALSE(controllers.endsRun);
}

TEST(Controllers, OfPortsAreNumberedThoughOneEndsTheUuids) {
  testing::Computer computer;
  const auto first = computer.AddPort("first", {});
  const auto routed = computer.AddPort("routed", {{"Route String", 3}});
  const auto last = computer.AddPort("last", {{"UUID", "x"}});
  const auto controllers = FindPortControllers(computer.Recorded());
  EXPECT_EQ(controllers.numbers, (Numbers{{first, 1}, {routed, 0}, {last, 2}}));
  EXPECT_EQ(controllers.inventory.records, std::vector<HardwareRecord>(2));
}

TEST(Controllers, ThatEndTheRunAbnormallyAreStillFound) {
  testing::Computer computer;
  const auto broken = computer.AddThunderbolt("broken", {{"Depth", 0}, {"Route String", 0}});
  const auto controllers = FindThunderboltControllers(computer.Recorded());
  EXPECT_TRUE(controllers.endsRun);
  EXPECT_EQ(controllers.numbers, (Numbers{{broken, 0}}));
  EXPECT_EQ(controllers.inventory, HardwareInventory{});
}

TEST(Controllers, OfAComputerWithoutAnyAreNone) {
  const auto controllers = FindPortControllers(testing::Computer().Recorded());
  EXPECT_EQ(controllers.numbers, Numbers{});
  EXPECT_EQ(controllers.inventory, HardwareInventory{});
}

}  // namespace
}  // namespace fernwick::lab
