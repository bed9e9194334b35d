#include "lab/recordings/entry_path.h"

#include <gtest/gtest.h>

#include "testing/computer.h"

namespace fernwick::lab {
namespace {

TEST(EntryPath, LeadsFromTheRootToTheEntry) {
  testing::Computer computer;
  const auto bridge = computer.AddService(computer.Services(), "bridge0", "Bridge", {});
  const auto port = computer.AddService(bridge, "hpm0", "QuinceHPMDevice", {});
  const auto path = EntryPath(computer.Recorded(), port);
  EXPECT_EQ(path, "IOService:/bridge0/hpm0");
  RecordedRegistry registry(computer.Recorded());
  EXPECT_EQ(registry.LookupEntryByPath(path), port);
}

TEST(EntryPath, OfTheRootIsASlash) {
  testing::Computer computer;
  EXPECT_EQ(EntryPath(computer.Recorded(), computer.Services()), "IOService:/");
}

}  // namespace
}  // namespace fernwick::lab
