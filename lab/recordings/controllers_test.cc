#include "lab/recordings/controllers.h"

#include <gtest/gtest.h>

#include "testing/computer.h"

namespace fernwick::lab {
namespace {

using Places = std::map<RegistryEntry, std::size_t>;

TEST(Controllers, AreThoseOfTheClassWithTheirPlaceInTheInventory) {
  testing::Computer computer;
  const auto cabled =
      computer.AddThunderbolt("cabled", {{"UID", 1}, {"Depth", 1}, {"Route String", 0}});
  const auto own = computer.AddThunderbolt("own", {{"UID", 2}, {"Depth", 0}, {"Route String", 0}});
  const auto controllers = FindThunderboltControllers(computer.Recorded());
  EXPECT_EQ(controllers.places, (Places{{cabled, 0}, {own, 1}}));
  ASSERT_TRUE(controllers.inventory.has_value());
  ASSERT_EQ(controllers.inventory->size(), 1u);
  EXPECT_EQ(*controllers.inventory->front().Find("RID"), PropertyValue(2));
  EXPECT_FALSE(controllers.endsRun);
}

TEST(Controllers, OfPortsArePlacedThoughOneEndsTheUuids) {
  testing::Computer computer;
  const auto first = computer.AddPort("first", {});
  const auto routed = computer.AddPort("routed", {{"Route String", 3}});
  const auto last = computer.AddPort("last", {{"UUID", "x"}});
  const auto controllers = FindPortControllers(computer.Recorded());
  EXPECT_EQ(controllers.places, (Places{{first, 1}, {routed, 0}, {last, 2}}));
  EXPECT_EQ(controllers.inventory, HardwareInventory({Dictionary{}, Dictionary{}}));
}

TEST(Controllers, ThatEndTheRunAbnormallyAreStillFound) {
  testing::Computer computer;
  const auto broken = computer.AddThunderbolt("broken", {{"Depth", 0}, {"Route String", 0}});
  const auto controllers = FindThunderboltControllers(computer.Recorded());
  EXPECT_TRUE(controllers.endsRun);
  EXPECT_EQ(controllers.places, (Places{{broken, 0}}));
  EXPECT_EQ(controllers.inventory, std::nullopt);
}

TEST(Controllers, OfAComputerWithoutAnyAreNone) {
  const auto controllers = FindPortControllers(testing::Computer().Recorded());
  EXPECT_EQ(controllers.places, Places{});
  EXPECT_EQ(controllers.inventory, std::nullopt);
}

}  // namespace
}  // namespace fernwick::lab
