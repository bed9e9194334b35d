#include "registry/inventory_recorder.h"

#include <gtest/gtest.h>

#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/distinctness.h"
#include "testing/logging_registry.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::LoggingRegistry;

using Collect = HardwareInventory (*)(Registry&, InventoryRecorder*);

// What the recorder learns. Recorded or not, the inventory and what it asks are the same.
InventoryRecorder Learned(const Computer& computer, Collect collect) {
  LoggingRegistry silent(computer.Recorded());
  LoggingRegistry told(computer.Recorded());
  InventoryRecorder recorder;
  EXPECT_EQ(collect(silent, nullptr), collect(told, &recorder));
  EXPECT_EQ(silent.Calls(), told.Calls());
  return recorder;
}

TEST(InventoryRecorder, LearnsWhereEachPortIs) {
  Computer computer;
  const auto alone = computer.AddPort("hpm0", {{"RID", 1}, {"Version", 1}, {"UUID", "a"}});
  const auto ridge = computer.AddThunderbolt("ridge0", {{"UID", 7}, {"ROM Version", 1}});
  const auto bus = computer.AddService(ridge, "bus", "Bus", {});
  const auto below = computer.AddService(bus, "hpm1", "QuinceHPMDevice", {{"UUID", "b"}});
  const auto bare = computer.AddPort("hpm2", {});
  EXPECT_EQ(
      Learned(computer, CollectPortControllers),
      (InventoryRecorder{.listed = {{.port = alone, .rid = Origin::Port, .version = Origin::Port},
                                    {.port = below,
                                     .thunderbolt = ridge,
                                     .rid = Origin::Thunderbolt,
                                     .version = Origin::Thunderbolt},
                                    {.port = bare}}}));
}

TEST(InventoryRecorder, LearnsWhichUuidsAreNotFetched) {
  Computer computer;
  const auto first = computer.AddPort("hpm0", {{"UUID", "a"}});
  const auto second = computer.AddPort("hpm1", {{"UUID", 5}});
  const auto third = computer.AddPort("hpm2", {{"UUID", "c"}});
  EXPECT_EQ(
      Learned(computer, CollectPortControllers),
      (InventoryRecorder{
          .listed = {{.port = first}, {.port = second}, {.port = third, .uuidFetched = false}}}));
}

TEST(InventoryRecorder, LearnsWhyAPortIsOmitted) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("ridge0", {{"UID", 7}});
  const auto addressed = computer.AddService(ridge, "hpm0", "QuinceHPMDevice", {{"Address", 1}});
  const auto routed = computer.AddPort("hpm1", {{"Route String", 1}});
  EXPECT_EQ(Learned(computer, CollectPortControllers),
            (InventoryRecorder{.omitted = {{addressed, Omission::AddressBelowThunderbolt},
                                           {routed, Omission::RouteString}}}));
}

TEST(InventoryRecorder, LearnsWhereEachThunderboltControllerIs) {
  Computer computer;
  const auto own =
      computer.AddThunderbolt("ridge0", {{"UID", 7}, {"Depth", 0}, {"Route String", 0}});
  const auto dock =
      computer.AddThunderbolt("dock", {{"UID", 7}, {"Depth", 1}, {"Route String", 1}});
  EXPECT_EQ(Learned(computer, CollectThunderboltControllers),
            (InventoryRecorder{.listed = {{.thunderbolt = own, .rid = Origin::Thunderbolt}},
                               .omitted = {{dock, Omission::NotAtRootOfTopology}}}));
}

// What tests compare is compared whole.
TEST(InventoryRecorder, DiffersByEachOfItsMembers) {
  testing::ExpectDistinct<RecordSource>({.port = 1}, {{.port = 2},
                                                      {.port = 1, .thunderbolt = 1},
                                                      {.port = 1, .rid = Origin::Port},
                                                      {.port = 1, .version = Origin::Port},
                                                      {.port = 1, .uuidFetched = false}});
  testing::ExpectDistinct<OmittedController>(
      {1, Omission::RouteString}, {{2, Omission::RouteString}, {1, Omission::NotAtRootOfTopology}});
  testing::ExpectDistinct<InventoryRecorder>(
      {}, {{.listed = {{.port = 1}}}, {.omitted = {{1, Omission::RouteString}}}});
}

}  // namespace
}  // namespace fernwick
