#include "registry/port_inventory.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/call_lists.h"
#include "testing/computer.h"
#include "testing/failed_matching.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/property_values.h"
#include "testing/recordings.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::CallList;
using testing::Computer;
using testing::Joined;
using testing::List;
using testing::LoggingRegistry;
using testing::Named;
using testing::NamedValue;
using testing::NonNumbers;
using testing::PropertyReads;
using testing::RowName;
using testing::ThunderboltFieldReads;

constexpr std::uint64_t AllOnes = std::numeric_limits<std::uint64_t>::max();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

using Records = std::vector<HardwareRecord>;

InventoryResult InventoryOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  return CollectPortControllers(registry);
}

/// The records of the computer's inventory, which has no fault.
Records CollectedFrom(const Computer& computer) {
  const auto inventory = InventoryOf(computer);
  if (!inventory) {
    ADD_FAILURE() << Describe(inventory.Error());
    return {};
  }
  EXPECT_EQ(inventory->sources.size(), inventory->records.size());
  return inventory->records;
}

/// The records of a computer with one port controller and no Thunderbolt controller.
Records RecordsOf(const Record& port) {
  Computer computer;
  computer.AddPort("Port0", port);
  return CollectedFrom(computer);
}

/// A computer with one port controller below a Thunderbolt controller.
Computer PortBelow(const Record& ridge, const Record& port) {
  Computer computer;
  const RegistryEntry controller = computer.AddThunderbolt("Ridge0", ridge);
  computer.AddService(controller, "Port0", "QuinceHPMDevice", port);
  return computer;
}

Records RecordsBelow(const Record& ridge, const Record& port) {
  return CollectedFrom(PortBelow(ridge, port));
}

Records Listed(Records records) {
  return records;
}

const Record FullPort{
    {"UUID", "6B1F"},       {"Version", 0x0171}, {"Address", 0x3F},          {"Revision", 4},
    {"Revision ID", 3},     {"Device ID", 2},    {"Vendor ID", 0x80000001u}, {"RID", 2},
    {"Unrelated", "value"},
};

const HardwareRecord FullRecord{
    {"RID", 2},
    {"Port Silicon Vendor ID", -2147483647},
    {"Port Silicon Device ID", 2},
    {"Port Silicon Revision", 3},
    {"Port OTP Revision", 4},
    {"Port Address", 0x3F},
    {"Version", 171},
    {"Port UUID", "6B1F"},
};

TEST(PortInventory, WritesEveryKeyInItsOrder) {
  EXPECT_EQ(RecordsOf(FullPort), Listed({FullRecord}));
}

TEST(PortInventory, ListsAPortWithoutPropertiesAsAnEmptyRecord) {
  EXPECT_EQ(RecordsOf({}), Listed({{}}));
}

TEST(PortInventory, KeepsTheOrderOfTheRegistry) {
  Computer computer;
  computer.AddPort("Port1", {{"RID", 1}});
  const RegistryEntry bus = computer.AddService(computer.Services(), "Bus", "Bus", {});
  computer.AddPort("Port0", {{"RID", 3}});
  computer.AddService(bus, "Port2", "QuinceHPMDevice", {{"RID", 2}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}}, {{"RID", 2}}, {{"RID", 3}}}));
}

TEST(PortInventory, ListsEqualPortsTwice) {
  Computer computer;
  computer.AddPort("Port0", {{"RID", 1}});
  computer.AddPort("Port0", {{"RID", 1}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}}, {{"RID", 1}}}));
}

TEST(PortInventory, ListsPortsOfDerivedClasses) {
  Computer computer;
  computer.Derive("QuinceHPMDeviceI2C", "QuinceHPMDevice");
  computer.AddService(computer.Services(), "Port0", "QuinceHPMDeviceI2C", {{"RID", 1}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}}}));
}

TEST(PortInventory, ListsAPortBelowAPortOnItsOwn) {
  Computer computer;
  const RegistryEntry upper = computer.AddPort("Port0", {{"RID", 1}});
  computer.AddService(upper, "Port1", "QuinceHPMDevice", {{"RID", 2}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}}, {{"RID", 2}}}));
}

TEST(PortInventory, IsEmptyWithoutPorts) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  EXPECT_EQ(CollectedFrom(computer), Records());
}

TEST(PortInventory, IsEmptyWithoutServicePlane) {
  const Recording recording = testing::RecordingOf({});
  RecordedRegistry registry(recording);
  EXPECT_EQ(CollectPortControllers(registry), InventoryResult(HardwareInventory()));
}

TEST(PortInventory, IsEmptyWhenAllPortsAreSkipped) {
  Computer computer;
  computer.AddPort("Port0", {{"Route String", 1}});
  computer.AddPort("Port1", {{"Route String", 0x301}});
  EXPECT_EQ(CollectedFrom(computer), Records());
}

TEST(PortInventory, IsEmptyWhenAllPortsAreDropped) {
  EXPECT_EQ(RecordsBelow({{"UID", 1}}, {{"Address", 0x3F}}), Records());
}

TEST(PortInventory, PropertiesOfOtherEntriesAreNotSearched) {
  Computer computer;
  computer.Set(computer.Services(), "RID", 7);
  const RegistryEntry port = computer.AddPort("Port0", {{"Address", 1}});
  computer.AddService(port, "Below", "", FullPort);
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"Port Address", 1}}}));
}

struct RouteRow {
  PropertyValue route;
  bool isTaken;
};

class RouteStringOf : public ::testing::TestWithParam<Named<RouteRow>> {};

TEST_P(RouteStringOf, DecidesWhetherAPortIsListed) {
  const auto& [route, isTaken] = GetParam().row;
  const HardwareRecord record{{"RID", 1}};
  EXPECT_EQ(RecordsOf({{"Route String", route}, {"RID", 1}}),
            isTaken ? Listed({record}) : Records());
}

std::vector<Named<RouteRow>> RouteRows() {
  std::vector<Named<RouteRow>> rows{
      {"Zero", {0, true}},
      {"One", {1, false}},
      {"MinusOne", {-1, false}},
      {"NothingInTheLow32Bits", {0x200000000, true}},
      {"OneInTheLow32Bits", {0x200000001, false}},
      {"AllOfTheHigh32Bits", {0xFFFFFFFF00000000, true}},
      {"Bit31", {0x80000000u, false}},
      {"GreatestInteger", {AllOnes, false}},
      {"BooleanFalse", {false, true}},
      {"BooleanTrue", {true, false}},
      {"RealZero", {0.0, true}},
      {"RealBelowOne", {0.9, true}},
      {"RealOne", {1.0, false}},
      {"NegativeReal", {-7.0, true}},
      {"HugeReal", {1e300, false}},
      {"Nan", {Nan, true}},
  };
  for (const auto& odd : NonNumbers()) rows.push_back({odd.name, {odd.row, true}});
  return rows;
}

INSTANTIATE_TEST_SUITE_P(PortInventory, RouteStringOf, ::testing::ValuesIn(RouteRows()), RowName);

TEST(PortInventory, VersionIsDecodedFromBcd) {
  EXPECT_EQ(RecordsOf({{"Version", 0x0171}}), Listed({{{"Version", 171}}}));
  EXPECT_EQ(RecordsOf({{"Version", 0x1234}}), Listed({{{"Version", 1234}}}));
  EXPECT_EQ(RecordsOf({{"Version", 0x1A}}), Listed({{{"Version", 20}}}));
  EXPECT_EQ(RecordsOf({{"Version", 0}}), Listed({{{"Version", 0}}}));
  EXPECT_EQ(RecordsOf({{"Version", 0xFFFFFFFFu}}), Listed({{{"Version", 166666665}}}));
}

TEST(PortInventory, VersionOfAnotherNumberKindIsDecodedToo) {
  EXPECT_EQ(RecordsOf({{"Version", 369.9}}), Listed({{{"Version", 171}}}));
  EXPECT_EQ(RecordsOf({{"Version", true}}), Listed({{{"Version", 1}}}));
  EXPECT_EQ(RecordsOf({{"Version", 0x300000171}}), Listed({{{"Version", 171}}}));
}

TEST(PortInventory, AddressKeepsItsLow32BitsAsASignedInteger) {
  EXPECT_EQ(RecordsOf({{"Address", 0x3FFFFFFFF}}), Listed({{{"Port Address", -1}}}));
}

class OddPortProperty : public ::testing::TestWithParam<NamedValue> {};

TEST_P(OddPortProperty, LeavesOnlyItsOwnKeyOut) {
  const std::pair<const char*, const char*> targets[] = {
      {"RID", "RID"},
      {"Vendor ID", "Port Silicon Vendor ID"},
      {"Device ID", "Port Silicon Device ID"},
      {"Revision ID", "Port Silicon Revision"},
      {"Revision", "Port OTP Revision"},
      {"Address", "Port Address"},
      {"Version", "Version"},
  };
  for (const auto& [property, key] : targets) {
    SCOPED_TRACE(property);
    Record port = FullPort;
    port.Set(property, GetParam().row);
    HardwareRecord record = FullRecord;
    record.SetOrRemove(key, nullptr);
    EXPECT_EQ(RecordsOf(port), Listed({record}));
  }
}

TEST_P(OddPortProperty, AsAddressBelowAThunderboltControllerListsThePort) {
  EXPECT_EQ(RecordsBelow({{"UID", 1}}, {{"Address", GetParam().row}}),
            Listed({{{"RID", 1}, {"Ridge UID", 1}}}));
}

INSTANTIATE_TEST_SUITE_P(PortInventory, OddPortProperty, ::testing::ValuesIn(NonNumbers()),
                         RowName);

/// The inventory of ports with these values under "UUID"; empty (nullopt): without one.
Records RecordsOfUuids(const std::vector<std::optional<PropertyValue>>& uuids) {
  Computer computer;
  for (const auto& uuid : uuids) {
    const RegistryEntry port = computer.AddPort("Port", {});
    if (uuid) computer.Set(port, "UUID", *uuid);
  }
  return CollectedFrom(computer);
}

TEST(PortInventory, UuidIsWrittenForEveryPortWhenAllHaveOne) {
  EXPECT_EQ(RecordsOfUuids({"A", "B", "A"}),
            Listed({{{"Port UUID", "A"}}, {{"Port UUID", "B"}}, {{"Port UUID", "A"}}}));
}

TEST(PortInventory, UuidEndsForThePassAtTheFirstMissingOne) {
  EXPECT_EQ(RecordsOfUuids({"A", std::nullopt, "C"}), Listed({{{"Port UUID", "A"}}, {}, {}}));
}

TEST(PortInventory, UuidEndsForThePassWhenTheFirstPortHasNone) {
  EXPECT_EQ(RecordsOfUuids({std::nullopt, "B"}), Listed({{}, {}}));
}

TEST(PortInventory, UuidMayBeEmpty) {
  EXPECT_EQ(RecordsOfUuids({"", "B"}), Listed({{{"Port UUID", ""}}, {{"Port UUID", "B"}}}));
}

TEST(PortInventory, UuidThatIsNotAStringEndsItForThePass) {
  const PropertyValue values[] = {Bytes("A"), 5, 5.5, true, Date{5}, List({"A"}), Dictionary()};
  for (const auto& value : values) {
    EXPECT_EQ(RecordsOfUuids({"A", value, "C"}), Listed({{{"Port UUID", "A"}}, {}, {}}))
        << ::testing::PrintToString(value);
  }
}

TEST(PortInventory, ASkippedPortWithoutUuidLeavesThatOfTheOthers) {
  Computer computer;
  computer.AddPort("Port0", {{"Route String", 1}});
  computer.AddPort("Port1", {{"UUID", "B"}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"Port UUID", "B"}}}));
}

TEST(PortInventory, ASkippedPortWithUuidDoesNotBringItBack) {
  Computer computer;
  computer.AddPort("Port0", {});
  computer.AddPort("Port1", {{"Route String", 1}, {"UUID", "B"}});
  computer.AddPort("Port2", {{"UUID", "C"}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{}, {}}));
}

TEST(PortInventory, ADroppedPortWithoutUuidEndsItForThePass) {
  Computer computer;
  const RegistryEntry ridge = computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  computer.AddService(ridge, "Port0", "QuinceHPMDevice", {{"Address", 0x3F}});
  computer.AddPort("Port1", {{"UUID", "B"}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{}}));
}

TEST(PortInventory, BelowAThunderboltControllerItsFieldsComeAfterThePortsOwn) {
  const Record ridge{
      {"UID", 0x5A7},
      {"Vendor ID", 11},
      {"Device ID", 12},
      {"Revision ID", 13},
      {"Device Model Name", "Model"},
      {"Device Model ID", 14},
      {"Device Model Revision", 15},
      {"Firmware Mode", 1},
      {"ROM Version", 0x41},
      {"EEPROM Revision", 0x45},
  };
  Record port = FullPort;
  port.Set("Address", 0);
  EXPECT_EQ(RecordsBelow(ridge, port), Listed({{{"RID", 2},
                                                {"Port Silicon Vendor ID", -2147483647},
                                                {"Port Silicon Device ID", 2},
                                                {"Port Silicon Revision", 3},
                                                {"Port OTP Revision", 4},
                                                {"Port Address", 0},
                                                {"Version", 41.050000000999994},
                                                {"Port UUID", "6B1F"},
                                                {"Ridge Silicon Vendor ID", 11},
                                                {"Ridge Silicon Device ID", 12},
                                                {"Ridge Silicon Revision", 13},
                                                {"Device Model Name", "Model"},
                                                {"Device Model ID", 14},
                                                {"Device Model Revision", 15},
                                                {"Firmware Mode", true},
                                                {"Ridge UID", 0x5A7},
                                                {"Engineering Version", 64}}}));
}

TEST(PortInventory, VersionBelowAThunderboltControllerIsThatControllers) {
  EXPECT_EQ(RecordsBelow({{"UID", 1}, {"ROM Version", 0x41}, {"EEPROM Revision", 0x05}},
                         {{"Version", 0x0171}, {"Address", 0}}),
            Listed({{{"Port Address", 0},
                     {"Version", 41.050000000999994},
                     {"RID", 1},
                     {"Ridge UID", 1},
                     {"Engineering Version", 0}}}));
}

TEST(PortInventory, VersionBelowAThunderboltControllerWithoutRomVersionIsThePorts) {
  EXPECT_EQ(
      RecordsBelow({{"UID", 1}, {"EEPROM Revision", 0x05}}, {{"Version", 0x0171}, {"Address", 0}}),
      Listed({{{"Port Address", 0}, {"Version", 171}, {"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, OwnRidIsKeptBelowAThunderboltController) {
  EXPECT_EQ(RecordsBelow({{"UID", 0x5A7}}, {{"RID", 2}}),
            Listed({{{"RID", 2}, {"Ridge UID", 0x5A7}}}));
}

TEST(PortInventory, OwnRidOfZeroIsKeptBelowAThunderboltController) {
  EXPECT_EQ(RecordsBelow({{"UID", 0x5A7}}, {{"RID", 0}}),
            Listed({{{"RID", 0}, {"Ridge UID", 0x5A7}}}));
}

TEST(PortInventory, WithoutOwnRidThatOfTheThunderboltControllerIsUsed) {
  EXPECT_EQ(RecordsBelow({{"UID", 0x5A7}}, {}), Listed({{{"RID", 7}, {"Ridge UID", 0x5A7}}}));
}

struct AddressRow {
  PropertyValue address;
  std::optional<std::int32_t> written;  // nothing: the port is dropped
};

class AddressBelow : public ::testing::TestWithParam<Named<AddressRow>> {};

TEST_P(AddressBelow, AThunderboltControllerDecidesWhetherThePortIsListed) {
  const auto& [address, written] = GetParam().row;
  Records expected;
  if (written) expected = Listed({{{"Port Address", *written}, {"RID", 1}, {"Ridge UID", 1}}});
  EXPECT_EQ(RecordsBelow({{"UID", 1}}, {{"Address", address}}), expected);
}

const Named<AddressRow> AddressRows[] = {
    {"Zero", {0, 0}},
    {"Other", {0x3F, std::nullopt}},
    {"One", {1, std::nullopt}},
    {"MinusOne", {-1, std::nullopt}},
    {"NothingInTheLow32Bits", {0x300000000, 0}},
    {"BooleanFalse", {false, 0}},
    {"BooleanTrue", {true, std::nullopt}},
    {"RealBelowOne", {0.9, 0}},
    {"RealOne", {1.0, std::nullopt}},
    {"NegativeReal", {-1.0, 0}},
    {"Nan", {Nan, 0}},
};

INSTANTIATE_TEST_SUITE_P(PortInventory, AddressBelow, ::testing::ValuesIn(AddressRows), RowName);

TEST(PortInventory, WithoutThunderboltControllerAnyAddressIsListed) {
  EXPECT_EQ(RecordsOf({{"Address", 0x3F}}), Listed({{{"Port Address", 0x3F}}}));
  EXPECT_EQ(RecordsOf({{"Address", 0}}), Listed({{{"Port Address", 0}}}));
}

TEST(PortInventory, AddressAbsentBelowAThunderboltControllerIsListed) {
  EXPECT_EQ(RecordsBelow({{"UID", 1}}, {}), Listed({{{"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, RouteStringOtherThanZeroBelowAThunderboltControllerIsSkipped) {
  EXPECT_EQ(RecordsBelow({{"UID", 1}}, {{"Route String", 1}, {"Address", 0}}), Records());
}

TEST(PortInventory, OfSeveralPortsBelowOneThunderboltControllerOnlyAddressZeroIsListed) {
  Computer computer;
  const RegistryEntry ridge = computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  for (const int address : {0x38, 0, 0x3F, 0}) {
    computer.AddService(ridge, "Port", "QuinceHPMDevice", {{"Address", address}});
  }
  const HardwareRecord record{{"Port Address", 0}, {"RID", 1}, {"Ridge UID", 1}};
  EXPECT_EQ(CollectedFrom(computer), Listed({record, record}));
}

TEST(PortInventory, PortsBesideAThunderboltControllerCarryNothingOfIt) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  computer.AddPort("Port0", {{"Address", 0x3F}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"Port Address", 0x3F}}}));
}

TEST(PortInventory, WalksThroughEntriesOfOtherClasses) {
  Computer computer;
  const RegistryEntry ridge = computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  const RegistryEntry port = computer.AddService(ridge, "Socket", "IOThunderboltPort", {});
  computer.AddService(port, "Port0", "QuinceHPMDevice", {});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, WalksUpAnyNumberOfLevels) {
  Computer computer;
  RegistryEntry entry = computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  for (int i = 0; i < 1000; ++i) entry = computer.AddService(entry, "Level", "", {});
  computer.AddService(entry, "Port0", "QuinceHPMDevice", {});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, UsesTheNearestOfTwoThunderboltControllers) {
  Computer computer;
  const RegistryEntry upper = computer.AddThunderbolt("Ridge0", {{"UID", 1}, {"Vendor ID", 11}});
  const RegistryEntry lower =
      computer.AddService(upper, "Ridge1", "IOThunderboltSwitch", {{"UID", 2}});
  computer.AddService(lower, "Port0", "QuinceHPMDevice", {});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 2}, {"Ridge UID", 2}}}));
}

TEST(PortInventory, AThunderboltControllerOfADerivedClassIsOne) {
  Computer computer;
  computer.Derive("RidgeSwitch", "IOThunderboltSwitch");
  const RegistryEntry ridge =
      computer.AddService(computer.Services(), "Ridge0", "RidgeSwitch", {{"UID", 1}});
  computer.AddService(ridge, "Port0", "QuinceHPMDevice", {});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, DoesNotAskWhereTheThunderboltControllerSits) {
  EXPECT_EQ(RecordsBelow({{"UID", 1}, {"Depth", 2}, {"Route String", 0x301}}, {}),
            Listed({{{"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, APortThatIsItselfAThunderboltControllerIsNotItsOwnAncestor) {
  Computer computer;
  computer.Derive("QuinceHPMDevice", "IOThunderboltSwitch");
  computer.AddPort("Port0", {{"Address", 0x3F}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"Port Address", 0x3F}}}));
}

TEST(PortInventory, APortAtTheRootOfTheServicePlaneIsListed) {
  const Recording recording =
      testing::RecordingOf({{{"", "QuinceHPMDevice", testing::Dict({{"RID", 1}})}},
                            {{"IOService", {1, {{1, {}}}}}},
                            {}});
  RecordedRegistry registry(recording);
  const HardwareInventory expected{.records = {{{"RID", 1}}},
                                   .sources = {{.port = 1, .rid = Origin::Port}}};
  EXPECT_EQ(CollectPortControllers(registry), InventoryResult(expected));
}

CallList OwnReads(std::string_view port) {
  return PropertyReads(port, {"Route String", "RID", "Vendor ID", "Device ID", "Revision ID",
                              "Revision", "Address", "Version", "Address"});
}

/// The walk from an entry right below the root, with no Thunderbolt controller above it.
CallList WalkToTheTop(const std::string& entry) {
  return {"GetParentEntry " + entry + " IOService", "ConformsToClass root IOThunderboltSwitch",
          "GetParentEntry root IOService"};
}

const CallList Begin{"MatchServicesByClass QuinceHPMDevice", "ResetIterator iterator 1"};
const CallList Next{"NextEntry iterator 1"};
const CallList End{"NextEntry iterator 1", "ReleaseEntry iterator 1"};

CallList CollectionCalls(const Computer& computer) {
  LoggingRegistry registry(computer.Recorded());
  EXPECT_TRUE(CollectPortControllers(registry));
  return registry.Calls();
}

TEST(PortInventory, ReadsAFullPortInOrder) {
  Computer computer;
  computer.AddPort("Port0", FullPort);
  EXPECT_EQ(CollectionCalls(computer), (CallList{
                                           "MatchServicesByClass QuinceHPMDevice",
                                           "ResetIterator iterator 1",
                                           "NextEntry iterator 1",
                                           "GetProperty Port0 Route String",
                                           "GetProperty Port0 RID",
                                           "GetProperty Port0 Vendor ID",
                                           "GetProperty Port0 Device ID",
                                           "GetProperty Port0 Revision ID",
                                           "GetProperty Port0 Revision",
                                           "GetProperty Port0 Address",
                                           "GetProperty Port0 Version",
                                           "GetProperty Port0 Address",
                                           "GetProperty Port0 UUID",
                                           "GetParentEntry Port0 IOService",
                                           "ConformsToClass root IOThunderboltSwitch",
                                           "GetParentEntry root IOService",
                                           "NextEntry iterator 1",
                                           "ReleaseEntry iterator 1",
                                       }));
}

TEST(PortInventory, ReadsAPortWithoutPropertiesInTheSameOrder) {
  Computer computer;
  computer.AddPort("Port0", {});
  EXPECT_EQ(CollectionCalls(computer),
            Joined({Begin, Next, OwnReads("Port0"), PropertyReads("Port0", {"UUID"}),
                    WalkToTheTop("Port0"), End}));
}

TEST(PortInventory, UuidIsNotEvenFetchedAfterTheFirstMissingOne) {
  Computer computer;
  computer.AddPort("Port0", {{"UUID", "A"}});
  computer.AddPort("Port1", {{"UUID", 5}});
  computer.AddPort("Port2", {{"UUID", "C"}});
  EXPECT_EQ(
      CollectionCalls(computer),
      Joined({Begin, Next, OwnReads("Port0"), PropertyReads("Port0", {"UUID"}),
              WalkToTheTop("Port0"), Next, OwnReads("Port1"), PropertyReads("Port1", {"UUID"}),
              WalkToTheTop("Port1"), Next, OwnReads("Port2"), WalkToTheTop("Port2"), End}));
}

TEST(PortInventory, ReadsOnlyTheRouteStringOfASkippedPort) {
  Computer computer;
  computer.AddPort("Port0", {{"Route String", 1}});
  EXPECT_EQ(CollectionCalls(computer),
            Joined({Begin, Next, PropertyReads("Port0", {"Route String"}), End}));
}

/// The calls over one port two levels below a Thunderbolt controller.
CallList CallsBelow(const Record& port) {
  Computer computer;
  const RegistryEntry ridge =
      computer.AddThunderbolt("Ridge0", {{"UID", 1}, {"ROM Version", 0x41}});
  const RegistryEntry socket = computer.AddService(ridge, "Socket", "", {});
  computer.AddService(socket, "Port0", "QuinceHPMDevice", port);
  return CollectionCalls(computer);
}

const CallList WalkToTheRidge{
    "GetParentEntry Port0 IOService", "ConformsToClass Socket IOThunderboltSwitch",
    "GetParentEntry Socket IOService", "ConformsToClass Ridge0 IOThunderboltSwitch"};

TEST(PortInventory, TheWalkEndsAtTheThunderboltControllerAndReleasesNothing) {
  EXPECT_EQ(CallsBelow({{"Address", 0}}),
            Joined({Begin, Next, OwnReads("Port0"), PropertyReads("Port0", {"UUID"}),
                    WalkToTheRidge, ThunderboltFieldReads("Ridge0"), End}));
}

TEST(PortInventory, FieldsAreReadAlsoForAPortThatIsThenDropped) {
  EXPECT_EQ(CallsBelow({{"Address", 0x3F}}),
            Joined({Begin, Next, OwnReads("Port0"), PropertyReads("Port0", {"UUID"}),
                    WalkToTheRidge, ThunderboltFieldReads("Ridge0"), End}));
}

TEST(PortInventory, UidOfTheThunderboltControllerIsFetchedOnceForAPortWithRid) {
  EXPECT_EQ(
      CallsBelow({{"RID", 2}}),
      Joined({Begin, Next, OwnReads("Port0"), PropertyReads("Port0", {"UUID"}), WalkToTheRidge,
              PropertyReads("Ridge0", {"Vendor ID", "Device ID", "Revision ID", "Device Model Name",
                                       "Device Model ID", "Device Model Revision", "Firmware Mode",
                                       "UID", "ROM Version", "EEPROM Revision"}),
              End}));
}

TEST(PortInventory, WithoutPortsOnlyTheIteratorIsAsked) {
  EXPECT_EQ(CollectionCalls(Computer()), Joined({Begin, End}));
}

TEST(PortInventory, IsCollectedAgainEachTimeAndFetchesUuidAgain) {
  Computer computer;
  computer.AddPort("Port0", {{"UUID", "A"}});
  computer.AddPort("Port1", {});
  LoggingRegistry registry(computer.Recorded());
  const auto first = CollectPortControllers(registry);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->records, Listed({{{"Port UUID", "A"}}, {}}));
  EXPECT_EQ(CollectPortControllers(registry), first);
  const auto pass = [](const std::string& iterator) {
    const CallList next{"NextEntry " + iterator};
    return Joined({{"MatchServicesByClass QuinceHPMDevice", "ResetIterator " + iterator},
                   next,
                   OwnReads("Port0"),
                   PropertyReads("Port0", {"UUID"}),
                   WalkToTheTop("Port0"),
                   next,
                   OwnReads("Port1"),
                   PropertyReads("Port1", {"UUID"}),
                   WalkToTheTop("Port1"),
                   next,
                   {"ReleaseEntry " + iterator}});
  };
  EXPECT_EQ(registry.Calls(), Joined({pass("iterator 1"), pass("iterator 2")}));
}

std::pair<CallList, InventoryResult> AfterFailedMatching(RegistryStatus status, bool withIterator) {
  Computer computer;
  computer.AddPort("Port0", {});
  return testing::AfterFailedMatching(computer, CollectPortControllers, status, withIterator);
}

TEST(PortInventory, IsEmptyAndReleasesTheIteratorWhenMatchingFails) {
  const CallList calls{"MatchServicesByClass QuinceHPMDevice", "ReleaseEntry iterator 1"};
  EXPECT_EQ(AfterFailedMatching(5, true), std::pair(calls, InventoryResult(HardwareInventory())));
  EXPECT_EQ(AfterFailedMatching(-5, true), std::pair(calls, InventoryResult(HardwareInventory())));
}

TEST(PortInventory, IsEmptyWhenMatchingFailsWithoutIterator) {
  const CallList calls{"MatchServicesByClass QuinceHPMDevice"};
  EXPECT_EQ(AfterFailedMatching(5, false), std::pair(calls, InventoryResult(HardwareInventory())));
}

TEST(PortInventory, IsEmptyWhenMatchingReturnsNoIterator) {
  const CallList calls{"MatchServicesByClass QuinceHPMDevice"};
  EXPECT_EQ(AfterFailedMatching(RegistrySuccess, false),
            std::pair(calls, InventoryResult(HardwareInventory())));
}

TEST(PortInventory, AThunderboltControllerWithoutUidIsAFault) {
  EXPECT_EQ(InventoryOf(PortBelow({{"ROM Version", 0x41}}, {{"Address", 0}})),
            InventoryResult(Fault::MissingUid));
}

TEST(PortInventory, AThunderboltControllerWithoutUidIsAFaultAlsoAboveADroppedPort) {
  EXPECT_EQ(InventoryOf(PortBelow({}, {{"RID", 2}, {"Address", 0x3F}})),
            InventoryResult(Fault::MissingUid));
}

TEST(PortInventory, AFaultEndsThePassAtTheMissingUidAndReleasesTheIterator) {
  Computer computer;
  computer.AddPort("Port0", {{"UUID", "A"}});
  const RegistryEntry ridge =
      computer.AddThunderbolt("Ridge0", {{"Vendor ID", 11}, {"ROM Version", 0x41}});
  const RegistryEntry socket = computer.AddService(ridge, "Socket", "", {});
  computer.AddService(socket, "Port1", "QuinceHPMDevice", {{"UUID", "B"}});
  computer.AddPort("Port2", {{"UUID", "C"}});
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(CollectPortControllers(registry), InventoryResult(Fault::MissingUid));
  EXPECT_EQ(
      registry.Calls(),
      Joined({Begin,
              Next,
              OwnReads("Port0"),
              PropertyReads("Port0", {"UUID"}),
              WalkToTheTop("Port0"),
              Next,
              OwnReads("Port1"),
              PropertyReads("Port1", {"UUID"}),
              {"GetParentEntry Port1 IOService", "ConformsToClass Socket IOThunderboltSwitch",
               "GetParentEntry Socket IOService", "ConformsToClass Ridge0 IOThunderboltSwitch"},
              PropertyReads("Ridge0",
                            {"UID", "Vendor ID", "Device ID", "Revision ID", "Device Model Name",
                             "Device Model ID", "Device Model Revision", "Firmware Mode", "UID"}),
              {"ReleaseEntry iterator 1"}}));
}

TEST(PortInventory, AThunderboltControllerWithoutUidDoesNotMatterToASkippedPort) {
  EXPECT_EQ(RecordsBelow({}, {{"Route String", 1}}), Records());
}

TEST(PortInventory, AThunderboltControllerWithoutUidDoesNotMatterBesideThePort) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", {});
  computer.AddPort("Port0", {{"RID", 1}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}}}));
}

/// The computer's inventory, which has no fault.
HardwareInventory WholeInventoryOf(const Computer& computer) {
  const auto inventory = InventoryOf(computer);
  EXPECT_TRUE(inventory);
  return inventory ? *inventory : HardwareInventory();
}

using Sources = std::vector<RecordSource>;
using Skipped = std::vector<SkippedController>;

TEST(PortInventory, RecordsWhereEachValueWasRead) {
  Computer computer;
  const auto alone = computer.AddPort("hpm0", {{"RID", 1}, {"Version", 1}, {"UUID", "a"}});
  const auto ridge = computer.AddThunderbolt("ridge0", {{"UID", 7}, {"ROM Version", 1}});
  const auto bus = computer.AddService(ridge, "bus", "Bus", {});
  const auto below = computer.AddService(bus, "hpm1", "QuinceHPMDevice", {{"UUID", "b"}});
  const auto bare = computer.AddPort("hpm2", {});
  const auto inventory = WholeInventoryOf(computer);
  EXPECT_EQ(inventory.sources,
            (Sources{{.port = alone, .rid = Origin::Port, .version = Origin::Port},
                     {.port = below,
                      .thunderbolt = ridge,
                      .rid = Origin::Thunderbolt,
                      .version = Origin::Thunderbolt},
                     {.port = bare}}));
  EXPECT_EQ(inventory.skipped, Skipped());
}

TEST(PortInventory, RecordsWhoseRidAndVersionAPortBelowAThunderboltControllerHas) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("ridge0", {{"UID", "seven"}});
  const auto own =
      computer.AddService(ridge, "hpm0", "QuinceHPMDevice", {{"RID", 1}, {"Version", 1}});
  const auto bare = computer.AddService(ridge, "hpm1", "QuinceHPMDevice", {{"RID", "1"}});
  EXPECT_EQ(
      WholeInventoryOf(computer).sources,
      (Sources{{.port = own, .thunderbolt = ridge, .rid = Origin::Port, .version = Origin::Port},
               {.port = bare, .thunderbolt = ridge, .uuidFetched = false}}));
}

TEST(PortInventory, RecordsWhichUuidsAreNotFetched) {
  Computer computer;
  const auto first = computer.AddPort("hpm0", {{"UUID", "a"}});
  const auto second = computer.AddPort("hpm1", {{"UUID", 5}});
  const auto third = computer.AddPort("hpm2", {{"UUID", "c"}});
  EXPECT_EQ(WholeInventoryOf(computer).sources,
            (Sources{{.port = first}, {.port = second}, {.port = third, .uuidFetched = false}}));
}

TEST(PortInventory, RecordsWhyAPortIsSkipped) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("ridge0", {{"UID", 7}});
  const auto addressed = computer.AddService(ridge, "hpm0", "QuinceHPMDevice", {{"Address", 1}});
  const auto routed = computer.AddPort("hpm1", {{"Route String", 1}});
  EXPECT_EQ(WholeInventoryOf(computer),
            (HardwareInventory{.skipped = {{addressed, SkipReason::AddressBelowThunderbolt},
                                           {routed, SkipReason::RouteString}}}));
}

/// A computer whose property "Address" is another one at each read: the next of `addresses`, absent
/// where that is empty.
class ChangingAddress : public LoggingRegistry {
 public:
  ChangingAddress(const Computer& computer, std::vector<std::optional<PropertyValue>> addresses)
      : LoggingRegistry(computer.Recorded()), addresses_(std::move(addresses)) {}

  std::optional<PropertyValue> GetProperty(RegistryEntry entry, std::string_view key) override {
    const auto value = LoggingRegistry::GetProperty(entry, key);
    return key == "Address" ? addresses_.at(reads_++) : value;
  }

 private:
  std::vector<std::optional<PropertyValue>> addresses_;
  std::size_t reads_ = 0;
};

/// The records of a port below a Thunderbolt controller whose address is first the one, then the
/// other.
Records RecordsOfAddresses(std::optional<PropertyValue> first,
                           std::optional<PropertyValue> second) {
  const Computer computer = PortBelow({{"UID", 1}}, {{"Version", 1}});
  ChangingAddress registry(computer, {first, second});
  const auto inventory = CollectPortControllers(registry);
  EXPECT_TRUE(inventory);
  EXPECT_EQ(registry.CallsOf("GetProperty Port0 Address").size(), 2u);
  return inventory ? inventory->records : Records();
}

TEST(PortInventory, TheFirstReadOfTheAddressDecidesAndTheSecondIsWritten) {
  EXPECT_EQ(RecordsOfAddresses(0, 0x3F),
            Listed({{{"Port Address", 0x3F}, {"Version", 1}, {"RID", 1}, {"Ridge UID", 1}}}));
  EXPECT_EQ(RecordsOfAddresses(0x3F, 0), Records());
}

TEST(PortInventory, AnAddressThatOnlyTheSecondReadFindsIsWrittenAfterTheVersion) {
  EXPECT_EQ(RecordsOfAddresses(std::nullopt, 0x3F),
            Listed({{{"Version", 1}, {"Port Address", 0x3F}, {"RID", 1}, {"Ridge UID", 1}}}));
  EXPECT_EQ(RecordsOfAddresses("0x3F", 0x3F),
            Listed({{{"Version", 1}, {"Port Address", 0x3F}, {"RID", 1}, {"Ridge UID", 1}}}));
}

TEST(PortInventory, AnAddressThatOnlyTheFirstReadFindsStaysWritten) {
  EXPECT_EQ(RecordsOfAddresses(0, std::nullopt),
            Listed({{{"Port Address", 0}, {"Version", 1}, {"RID", 1}, {"Ridge UID", 1}}}));
  EXPECT_EQ(RecordsOfAddresses(0x3F, std::nullopt), Records());
}

}  // namespace
}  // namespace fernwick
