#include "registry/host/thunderbolt_bus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/host_tree.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::HostTree;

using Names = std::vector<std::string>;

constexpr char Id[] = "01234567-89ab-cdef-0123-456789abcdef";

// The directories of switches of these names, each with a unique id.
std::string Switches(const Names& names) {
  std::string tree;
  for (const auto& name : names) {
    tree += "sys/bus/thunderbolt/devices/" + name + "/\n";
    tree += "  uevent : DRIVER=thunderbolt\\nDEVTYPE=thunderbolt_device\\n\n";
    tree += std::string("  unique_id = ") + Id + "\n";
  }
  return tree;
}

std::vector<BusSwitch> ListedIn(const std::string& description) {
  const HostTree tree(description);
  return ListSwitches(HostFiles(tree.Root()));
}

Names NamesIn(const std::string& description) {
  Names names;
  for (const auto& bus : ListedIn(description)) names.push_back(bus.name);
  return names;
}

TEST(ListSwitches, WithoutABusIsEmpty) {
  EXPECT_EQ(NamesIn(""), Names());
  EXPECT_EQ(NamesIn("sys/bus/thunderbolt/devices = x\n"), Names());
}

TEST(ListSwitches, HasHostsFirstThenByHopsDomainAndRoute) {
  EXPECT_EQ(
      NamesIn(Switches({"10-0", "0-0", "2-0", "0-3", "0-1", "2-1", "0-301", "0-1001", "0-101"})),
      (Names{"0-0", "2-0", "10-0", "0-1", "0-3", "2-1", "0-101", "0-301", "0-1001"}));
}

TEST(ListSwitches, FollowsTheLinksOfTheBus) {
  EXPECT_EQ(NamesIn("sys/devices/pci/domain0/0-0/\n"
                    "  uevent = DEVTYPE=thunderbolt_device\n"
                    "  unique_id = 01234567-89ab-cdef-0123-456789abcdef\n"
                    "sys/bus/thunderbolt/devices/0-0 -> ../../../devices/pci/domain0/0-0\n"),
            Names{"0-0"});
}

// A hop is a byte of the route; the parent's route lacks the last one.
TEST(ListSwitches, KnowsTheParentOfEachSwitch) {
  const auto switches =
      ListedIn(Switches({"0-0", "1-0", "0-1", "1-1", "0-701", "0-1ff", "0-20701"}));
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"0-0", ""},    {"1-0", ""},      {"0-1", "0-0"},
      {"1-1", "1-0"}, {"0-701", "0-1"}, {"0-20701", "0-701"}};
  std::vector<std::pair<std::string, std::string>> found;
  for (const auto& bus : switches) {
    found.emplace_back(bus.name, bus.parent ? switches[*bus.parent].name : "");
  }
  EXPECT_EQ(found, expected);
}

TEST(ListSwitches, LeavesOutASwitchWithoutItsParent) {
  EXPECT_EQ(NamesIn(Switches({"0-0", "0-301", "1-1", "2-0"})), (Names{"0-0", "2-0"}));
  // and what is below it
  EXPECT_EQ(NamesIn(Switches({"0-0", "0-301", "0-20301"})), Names{"0-0"});
}

TEST(ListSwitches, WithARouteOfZeroBytesInsideHasTheParentBeforeThem) {
  const auto switches = ListedIn(Switches({"0-0", "0-1", "0-50001"}));
  ASSERT_EQ(switches.size(), 3u);
  EXPECT_EQ(switches[2].parent, 1u);
}

TEST(ListSwitches, AcceptsAllEightHops) {
  EXPECT_EQ(NamesIn(Switches({"0-0", "0-1", "0-101", "0-10101", "0-1010101", "0-101010101",
                              "0-10101010101", "0-1010101010101", "0-f101010101010101"}))
                .size(),
            9u);
}

TEST(ListSwitches, LeavesOutOtherNames) {
  EXPECT_EQ(NamesIn(Switches({"domain0",
                              "0-0:1.1",
                              "0",
                              "-",
                              "0-",
                              "-0",
                              "00-0",
                              "0-00",
                              "0-0A",
                              "0-A",
                              "x-0",
                              "A-0",
                              "a-0",
                              "0-x",
                              "0-0.1",
                              "0--1",
                              "0-+1",
                              "0-0x0",
                              "18446744073709551616-0",
                              "0-10000000000000000"})),
            Names());
}

TEST(ListSwitches, LeavesOutOtherKindsOfDevices) {
  const std::string id = std::string("  unique_id = ") + Id + "\n";
  const std::string device = "sys/bus/thunderbolt/devices/0-0/\n" + id;
  EXPECT_EQ(NamesIn(device + "  uevent = DEVTYPE=thunderbolt_xdomain\n"), Names());
  EXPECT_EQ(NamesIn(device + "  uevent :\n"), Names());
  EXPECT_EQ(NamesIn(device + "  uevent |\n"), Names());
  EXPECT_EQ(NamesIn(device), Names());
  EXPECT_EQ(NamesIn(device + "  uevent = DEVTYPE=thunderbolt_device\n"), Names{"0-0"});
  EXPECT_EQ(NamesIn("sys/bus/thunderbolt/devices/0-0 = x\n"), Names());
  EXPECT_EQ(NamesIn("sys/bus/thunderbolt/devices/0-0 -> 0-0\n"), Names());
}

std::vector<std::uint64_t> UidsWith(const std::string& file) {
  std::vector<std::uint64_t> uids;
  for (const auto& bus : ListedIn("sys/bus/thunderbolt/devices/0-0/\n"
                                  "  uevent = DEVTYPE=thunderbolt_device\n" +
                                  file)) {
    uids.push_back(bus.uid);
  }
  return uids;
}

using Uids = std::vector<std::uint64_t>;

TEST(ListSwitches, ReadsTheFirstEightBytesOfTheUuid) {
  EXPECT_EQ(UidsWith("  unique_id = 01234567-89ab-cdef-0123-456789abcdef\n"),
            Uids{0xEFCDAB8967452301});
  EXPECT_EQ(UidsWith("  unique_id :  F1234567-89AB-CDEF-0123-456789ABCDEF\\x09\n"),
            Uids{0xEFCDAB89674523F1});
  EXPECT_EQ(UidsWith("  unique_id = 00000000-0000-0000-ffff-ffffffffffff\n"), Uids{0});
}

TEST(ListSwitches, LeavesOutASwitchWithoutAUuid) {
  for (const char* id :
       {"", "0", "01234567-89ab-cdef-0123-456789abcde", "01234567-89ab-cdef-0123-456789abcdef0",
        "0123456789abcdef0123456789abcdef0123", "01234567-89ab-cdef-0123-456789abcdeg",
        "01234567+89ab-cdef-0123-456789abcdef", "0123456789ab-cdef-0123-456789abcdef--",
        "0123456---ab-cdef-0123-456789abcdef0", "01234567-89ab-cdef-0123-456789abcde\\x00"}) {
    EXPECT_EQ(UidsWith(std::string("  unique_id = ") + id + "\n"), Uids()) << id;
  }
  EXPECT_EQ(UidsWith("  unique_id |\n"), Uids());
  EXPECT_EQ(UidsWith(""), Uids());
}

TEST(ListSwitches, OfAThousandDomainsHasThemAll) {
  Names names;
  for (int i = 0; i < 1000; ++i) names.push_back(std::to_string(i) + "-0");
  const auto switches = ListedIn(Switches(names));
  ASSERT_EQ(switches.size(), 1000u);
  EXPECT_EQ(switches.back().name, "999-0");
}

// The property of a switch with these files; those of its PCI function are in `function`.
std::optional<PropertyValue> PropertyOf(std::string_view name, const std::string& files,
                                        const std::string& function = "",
                                        const std::string& device = "0-0") {
  const std::string host = "sys/devices/pci/domain0/0-0/\n";
  const HostTree tree("sys/devices/pci/\n" + function + host + files +
                      "sys/devices/pci/domain0/0-0/0-3/\n" + files +
                      "sys/bus/thunderbolt/devices/\n"
                      "  0-0 -> ../../../devices/pci/domain0/0-0\n"
                      "  0-3 -> ../../../devices/pci/domain0/0-0/0-3\n"
                      "  domain0 -> ../../../devices/pci/domain0\n");
  const BusSwitch bus = {.name = device, .route = device == "0-0" ? 0u : 3u, .uid = 7};
  return ReadSwitchProperty(HostFiles(tree.Root()), bus, name, testing::ValueArena());
}

TEST(SwitchProperty, OfTheRouteNeedsNoFile) {
  EXPECT_EQ(PropertyOf("Depth", ""), PropertyValue(0));
  EXPECT_EQ(PropertyOf("Route String", ""), PropertyValue(0));
  EXPECT_EQ(PropertyOf("UID", ""), PropertyValue(7));
  const HostFiles none("/none");
  const BusSwitch deep = {.name = "0-20701", .route = 0x20701};
  EXPECT_EQ(ReadSwitchProperty(none, deep, "Depth", testing::ValueArena()), PropertyValue(3));
  EXPECT_EQ(ReadSwitchProperty(none, deep, "Route String", testing::ValueArena()),
            PropertyValue(0x20701));
}

TEST(SwitchProperty, OfTheVersionIsTwoHexadecimalNumbers) {
  EXPECT_EQ(PropertyOf("ROM Version", "  nvm_version = 41.5\n"), PropertyValue(0x41));
  EXPECT_EQ(PropertyOf("EEPROM Revision", "  nvm_version = 41.C5\n"), PropertyValue(0xC5));
  EXPECT_EQ(PropertyOf("EEPROM Revision", "  nvm_version :  41.5 \n"), PropertyValue(5));
}

TEST(SwitchProperty, OfAVersionInAnotherFormIsAbsent) {
  for (const char* version : {"", "41", "41.", ".5", "41.5.1", "41 .5", "g.5", "41.-5", "0x41.5"}) {
    const auto file = std::string("  nvm_version = ") + version + "\n";
    EXPECT_EQ(PropertyOf("ROM Version", file), std::nullopt) << version;
    EXPECT_EQ(PropertyOf("EEPROM Revision", file), std::nullopt) << version;
  }
  EXPECT_EQ(PropertyOf("ROM Version", ""), std::nullopt);
}

TEST(SwitchProperty, OfTheModel) {
  EXPECT_EQ(PropertyOf("Device Model Name", "  device_name = Slate  13 \n"),
            PropertyValue("Slate  13 "));
  EXPECT_EQ(PropertyOf("Device Model Name", "  device_name :\n"), PropertyValue(""));
  EXPECT_EQ(PropertyOf("Device Model Name", "  device_name = \\xFF\n"), std::nullopt);
  EXPECT_EQ(PropertyOf("Device Model Name", "  device_name = a\\x00\n"), std::nullopt);
  EXPECT_EQ(PropertyOf("Device Model Name", ""), std::nullopt);
  EXPECT_EQ(PropertyOf("Device Model ID", "  device = 0x11\n"), PropertyValue(0x11));
  EXPECT_EQ(PropertyOf("Device Model ID", "  device = eleven\n"), std::nullopt);
  EXPECT_EQ(PropertyOf("Device Model ID", ""), std::nullopt);
}

TEST(SwitchProperty, OfAHostIsReadFromItsPciFunction) {
  const std::string function = "  vendor = 0x2a01\n  device = 0x0310\n  revision = 0x06\n";
  EXPECT_EQ(PropertyOf("Vendor ID", "", function), PropertyValue(0x2A01));
  EXPECT_EQ(PropertyOf("Device ID", "", function), PropertyValue(0x310));
  EXPECT_EQ(PropertyOf("Revision ID", "", function), PropertyValue(6));
  EXPECT_EQ(PropertyOf("Vendor ID", ""), std::nullopt);
  EXPECT_EQ(PropertyOf("Vendor ID", "", "  vendor = ?\n"), std::nullopt);
}

TEST(SwitchProperty, OfADeviceHasNoPciFunction) {
  const std::string function = "  vendor = 0x2a01\n  device = 0x0310\n  revision = 0x06\n";
  for (const char* name : {"Vendor ID", "Device ID", "Revision ID"}) {
    EXPECT_EQ(PropertyOf(name, "  device = 0x11\n", function, "0-3"), std::nullopt);
  }
  EXPECT_EQ(PropertyOf("Depth", "", "", "0-3"), PropertyValue(1));
}

TEST(SwitchProperty, OfAnotherNameIsAbsent) {
  EXPECT_EQ(PropertyOf("Address", "  Address = 1\n"), std::nullopt);
  EXPECT_EQ(PropertyOf("", ""), std::nullopt);
}

TEST(SwitchPropertyNames, AreAllThatASwitchCanHave) {
  EXPECT_EQ(SwitchPropertyNames(),
            (std::set<std::string>{"Depth", "Device ID", "Device Model ID", "Device Model Name",
                                   "EEPROM Revision", "ROM Version", "Revision ID", "Route String",
                                   "UID", "Vendor ID"}));
}

}  // namespace
}  // namespace fernwick
