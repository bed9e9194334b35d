#include "registry/host_registry.h"

#include <gtest/gtest.h>

#include "registry/board_identity.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

TEST(HostRegistry, HasNoEntryAtAnyPath) {
  HostRegistry registry;
  for (const auto* path : {"IODeviceTree:/", "IODeviceTree:/options", "IOService:/", ""}) {
    EXPECT_EQ(registry.LookupEntryByPath(path), 0u) << path;
  }
}

TEST(HostRegistry, HasNoProperties) {
  HostRegistry registry;
  for (const RegistryEntry entry : {0u, 1u}) {
    EXPECT_EQ(registry.GetProperty(entry, "UID"), std::nullopt);
    EXPECT_EQ(registry.SearchProperty(entry, "IOService", "UID", SearchRecursively), std::nullopt);
  }
}

TEST(HostRegistry, HasNoParents) {
  HostRegistry registry;
  RegistryEntry parent = 7;
  EXPECT_EQ(registry.GetParentEntry(1, "IOService", parent), RegistryNotFound);
  EXPECT_EQ(parent, 0u);
}

TEST(HostRegistry, MatchesNoServiceAndReturnsNoIterator) {
  HostRegistry registry;
  RegistryEntry iterator = 7;
  EXPECT_EQ(registry.MatchServicesByClass(PortControllerClass, iterator), RegistryNotFound);
  EXPECT_EQ(iterator, 0u);
}

TEST(HostRegistry, IteratesOverNothing) {
  HostRegistry registry;
  registry.ResetIterator(0);
  EXPECT_EQ(registry.NextEntry(0), 0u);
  EXPECT_EQ(registry.NextEntry(1), 0u);
}

TEST(HostRegistry, NothingConformsToAnyClass) {
  HostRegistry registry;
  EXPECT_FALSE(registry.ConformsToClass(0, PortControllerClass));
  EXPECT_FALSE(registry.ConformsToClass(1, PortControllerClass));
}

TEST(HostRegistry, ReleasingNothingDoesNothing) {
  HostRegistry registry;
  registry.ReleaseEntry(0);
  EXPECT_EQ(registry.LookupEntryByPath("IODeviceTree:/"), 0u);
}

TEST(HostRegistry, HasNoBoardAndNoInventory) {
  HostRegistry registry;
  std::uint64_t boardId = 7;
  std::uint8_t boardRevision = 7;
  EXPECT_EQ(ReadBoardId(registry, boardId, boardRevision), 0u);
  EXPECT_EQ(boardId, 0u);
  EXPECT_EQ(boardRevision, 0);
  EXPECT_EQ(ReadBoardIdString(registry), std::nullopt);
  EXPECT_EQ(ReadBoardRevision(registry), 0);
  EXPECT_EQ(CollectPortControllers(registry), InventoryResult(HardwareInventory()));
  EXPECT_EQ(CollectThunderboltControllers(registry), InventoryResult(HardwareInventory()));
}

}  // namespace
}  // namespace fernwick
