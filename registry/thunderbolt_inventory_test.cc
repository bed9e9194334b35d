#include "registry/thunderbolt_inventory.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/call_lists.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/failed_matching.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/property_values.h"
#include "testing/recordings.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::CallList;
using testing::Computer;
using testing::Dict;
using testing::Joined;
using testing::List;
using testing::LoggingRegistry;
using testing::Named;
using testing::NamedValue;
using testing::NonNumbers;
using testing::PropertyReads;
using testing::RowName;
using testing::ThunderboltFieldReads;
using testing::With;
using testing::Without;

constexpr std::uint64_t AllOnes = std::numeric_limits<std::uint64_t>::max();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

/// A controller at the root of the topology, with `more` set on it.
Record OwnController(const Record& more) {
  return With({{"Depth", 0}, {"Route String", 0}, {"UID", 0x5A3}}, more);
}

using Records = std::vector<HardwareRecord>;

InventoryResult InventoryOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  return CollectThunderboltControllers(registry);
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

/// The records of a computer with one controller.
Records RecordsOf(const Record& properties) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", properties);
  return CollectedFrom(computer);
}

Records Listed(Records records) {
  return records;
}

/// `record` after it was filled from a controller of those properties, and the fault, if any.
std::pair<HardwareRecord, std::optional<Fault>> FilledOrFault(const Record& properties,
                                                              HardwareRecord record) {
  Computer computer;
  const RegistryEntry controller = computer.AddThunderbolt("Ridge0", properties);
  RecordedRegistry registry(computer.Recorded());
  RecordSource source;
  const auto fault = FillThunderboltFields(registry, controller, &record, source);
  return {record, fault};
}

/// `record` after it was filled from a controller of those properties, without a fault.
HardwareRecord Filled(const Record& properties, HardwareRecord record = {}) {
  const auto [filled, fault] = FilledOrFault(properties, std::move(record));
  EXPECT_EQ(fault, std::nullopt);
  return filled;
}

const Record FullProperties{
    {"EEPROM Revision", 0x45},      {"ROM Version", 0x41},        {"UID", 0x5A3},
    {"Firmware Mode", 2},           {"Device Model Revision", 6}, {"Device Model ID", 5},
    {"Device Model Name", "Model"}, {"Revision ID", 3},           {"Device ID", 2},
    {"Vendor ID", 0x80000001u},     {"Unrelated", "value"},
};

const HardwareRecord FullRecord{
    {"RID", 3},
    {"Ridge Silicon Vendor ID", -2147483647},
    {"Ridge Silicon Device ID", 2},
    {"Ridge Silicon Revision", 3},
    {"Device Model Name", "Model"},
    {"Device Model ID", 5},
    {"Device Model Revision", 6},
    {"Firmware Mode", true},
    {"Ridge UID", 0x5A3},
    {"Version", 41.050000000999994},
    {"Engineering Version", 64},
};

TEST(ThunderboltInventory, ListsTheOwnControllerAndNotThatOfADevice) {
  Computer computer;
  const RegistryEntry own = computer.AddThunderbolt("Ridge0", OwnController({{"Vendor ID", 1}}));
  computer.AddService(own, "Ridge1", "IOThunderboltSwitch", OwnController({{"Depth", 1}}));
  EXPECT_EQ(CollectedFrom(computer),
            Listed({{{"RID", 3}, {"Ridge Silicon Vendor ID", 1}, {"Ridge UID", 0x5A3}}}));
}

TEST(ThunderboltInventory, KeepsTheOrderOfTheRegistry) {
  Computer computer;
  computer.AddThunderbolt("Ridge1", OwnController({{"UID", 1}}));
  const RegistryEntry bus = computer.AddService(computer.Services(), "Bus", "Bus", {});
  computer.AddThunderbolt("Ridge0", OwnController({{"UID", 3}}));
  computer.AddService(bus, "Ridge2", "IOThunderboltSwitch", OwnController({{"UID", 2}}));
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 1}, {"Ridge UID", 1}},
                                             {{"RID", 2}, {"Ridge UID", 2}},
                                             {{"RID", 3}, {"Ridge UID", 3}}}));
}

TEST(ThunderboltInventory, ListsControllersOfDerivedClasses) {
  Computer computer;
  computer.Derive("RidgeSwitch", "IOThunderboltSwitch").Derive("RidgeSwitchType3", "RidgeSwitch");
  computer.AddService(computer.Services(), "Ridge0", "RidgeSwitchType3", OwnController({}));
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 3}, {"Ridge UID", 0x5A3}}}));
}

TEST(ThunderboltInventory, ListsEqualControllersTwice) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({}));
  computer.AddThunderbolt("Ridge0", OwnController({}));
  const HardwareRecord record{{"RID", 3}, {"Ridge UID", 0x5A3}};
  EXPECT_EQ(CollectedFrom(computer), Listed({record, record}));
}

TEST(ThunderboltInventory, WritesEveryKeyInItsOrder) {
  EXPECT_EQ(RecordsOf(OwnController(FullProperties)), Listed({FullRecord}));
}

TEST(ThunderboltInventory, IsEmptyWithoutControllers) {
  EXPECT_EQ(CollectedFrom(Computer()), Records());
}

TEST(ThunderboltInventory, IsEmptyWithoutServicePlane) {
  const Recording recording = testing::RecordingOf({});
  RecordedRegistry registry(recording);
  EXPECT_EQ(CollectThunderboltControllers(registry), InventoryResult(HardwareInventory()));
}

TEST(ThunderboltInventory, IsEmptyWhenNoControllerQualifies) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({{"Depth", 1}}));
  computer.AddThunderbolt("Ridge1", OwnController({{"Route String", 1}}));
  EXPECT_EQ(CollectedFrom(computer), Records());
}

TEST(ThunderboltInventory, OmitsAControllerWithoutRouteString) {
  EXPECT_EQ(RecordsOf({{"Depth", 0}, {"UID", 1}}), Records());
}

TEST(ThunderboltInventory, OmitsAControllerWithoutDepth) {
  EXPECT_EQ(RecordsOf({{"Route String", 0}, {"UID", 1}}), Records());
}

struct TopologyRow {
  PropertyValue value;
  bool qualifies;
};

class PositionInTopology : public ::testing::TestWithParam<Named<TopologyRow>> {};

TEST_P(PositionInTopology, ByDepth) {
  const auto& [value, qualifies] = GetParam().row;
  EXPECT_EQ(!RecordsOf(OwnController({{"Depth", value}})).empty(), qualifies);
}

TEST_P(PositionInTopology, ByRouteString) {
  const auto& [value, qualifies] = GetParam().row;
  EXPECT_EQ(!RecordsOf(OwnController({{"Route String", value}})).empty(), qualifies);
}

std::vector<Named<TopologyRow>> TopologyRows() {
  std::vector<Named<TopologyRow>> rows{
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
      {"NegativeReal", {-7.0, true}},
      {"HugeReal", {1e300, false}},
      {"Nan", {Nan, true}},
  };
  for (const auto& odd : NonNumbers()) rows.push_back({odd.name, {odd.row, false}});
  return rows;
}

INSTANTIATE_TEST_SUITE_P(ThunderboltInventory, PositionInTopology,
                         ::testing::ValuesIn(TopologyRows()), RowName);

CallList PlaceReads(std::string_view controller) {
  return PropertyReads(controller, {"Depth", "Route String"});
}

CallList CollectionCalls(const Computer& computer) {
  LoggingRegistry registry(computer.Recorded());
  EXPECT_TRUE(CollectThunderboltControllers(registry));
  return registry.Calls();
}

TEST(ThunderboltInventory, ReadsAFullControllerInOrder) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController(FullProperties));
  EXPECT_EQ(CollectionCalls(computer), (CallList{
                                           "MatchServicesByClass IOThunderboltSwitch",
                                           "ResetIterator iterator 1",
                                           "NextEntry iterator 1",
                                           "GetProperty Ridge0 Depth",
                                           "GetProperty Ridge0 Route String",
                                           "GetProperty Ridge0 UID",
                                           "GetProperty Ridge0 Vendor ID",
                                           "GetProperty Ridge0 Device ID",
                                           "GetProperty Ridge0 Revision ID",
                                           "GetProperty Ridge0 Device Model Name",
                                           "GetProperty Ridge0 Device Model ID",
                                           "GetProperty Ridge0 Device Model Revision",
                                           "GetProperty Ridge0 Firmware Mode",
                                           "GetProperty Ridge0 UID",
                                           "GetProperty Ridge0 ROM Version",
                                           "GetProperty Ridge0 EEPROM Revision",
                                           "NextEntry iterator 1",
                                           "ReleaseEntry iterator 1",
                                       }));
}

TEST(ThunderboltInventory, ReadsDepthAndRouteStringOfEveryController) {
  Computer computer;
  computer.AddThunderbolt("Bare", {});
  computer.AddThunderbolt("Deep", OwnController({{"Depth", 1}}));
  computer.AddThunderbolt("Routed", OwnController({{"Route String", 1}}));
  computer.AddThunderbolt("Ridge0", OwnController({{"ROM Version", 1}}));
  computer.AddThunderbolt("Text", OwnController({{"Depth", "0"}}));
  EXPECT_EQ(CollectionCalls(computer),
            Joined({{"MatchServicesByClass IOThunderboltSwitch", "ResetIterator iterator 1"},
                    {"NextEntry iterator 1"},
                    PlaceReads("Bare"),
                    {"NextEntry iterator 1"},
                    PlaceReads("Deep"),
                    {"NextEntry iterator 1"},
                    PlaceReads("Routed"),
                    {"NextEntry iterator 1"},
                    PlaceReads("Ridge0"),
                    ThunderboltFieldReads("Ridge0"),
                    {"NextEntry iterator 1"},
                    PlaceReads("Text"),
                    {"NextEntry iterator 1", "ReleaseEntry iterator 1"}}));
}

TEST(ThunderboltInventory, IsCollectedAgainEachTime) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({{"ROM Version", 1}}));
  LoggingRegistry registry(computer.Recorded());
  const auto first = CollectThunderboltControllers(registry);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->records.size(), 1u);
  EXPECT_EQ(CollectThunderboltControllers(registry), first);
  const auto pass = [](const std::string& iterator) {
    return Joined({{"MatchServicesByClass IOThunderboltSwitch", "ResetIterator " + iterator},
                   {"NextEntry " + iterator},
                   PlaceReads("Ridge0"),
                   ThunderboltFieldReads("Ridge0"),
                   {"NextEntry " + iterator, "ReleaseEntry " + iterator}});
  };
  EXPECT_EQ(registry.Calls(), Joined({pass("iterator 1"), pass("iterator 2")}));
}

std::pair<CallList, InventoryResult> AfterFailedMatching(RegistryStatus status, bool withIterator) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({}));
  return testing::AfterFailedMatching(computer, CollectThunderboltControllers, status,
                                      withIterator);
}

TEST(ThunderboltInventory, IsEmptyAndReleasesTheIteratorWhenMatchingFails) {
  const CallList calls{"MatchServicesByClass IOThunderboltSwitch", "ReleaseEntry iterator 1"};
  EXPECT_EQ(AfterFailedMatching(5, true), std::pair(calls, InventoryResult(HardwareInventory())));
  EXPECT_EQ(AfterFailedMatching(-5, true), std::pair(calls, InventoryResult(HardwareInventory())));
}

TEST(ThunderboltInventory, IsEmptyWhenMatchingFailsWithoutIterator) {
  const CallList calls{"MatchServicesByClass IOThunderboltSwitch"};
  EXPECT_EQ(AfterFailedMatching(5, false), std::pair(calls, InventoryResult(HardwareInventory())));
}

TEST(ThunderboltInventory, IsEmptyWhenMatchingReturnsNoIterator) {
  const CallList calls{"MatchServicesByClass IOThunderboltSwitch"};
  EXPECT_EQ(AfterFailedMatching(RegistrySuccess, false),
            std::pair(calls, InventoryResult(HardwareInventory())));
}

TEST(ThunderboltFields, OfOnlyUid) {
  EXPECT_EQ(Filled({{"UID", 0x5A3}}), (Record{{"RID", 3}, {"Ridge UID", 0x5A3}}));
}

TEST(ThunderboltFields, OfAFullController) {
  EXPECT_EQ(Filled(FullProperties), FullRecord);
}

TEST(ThunderboltFields, DoNotAskWhereTheControllerSits) {
  EXPECT_EQ(Filled({{"UID", 0x5A3}, {"Depth", 2}, {"Route String", 0x301}}),
            (Record{{"RID", 3}, {"Ridge UID", 0x5A3}}));
}

TEST(ThunderboltFields, AreNotSearchedInOtherEntries) {
  Computer computer;
  computer.Set(computer.Services(), "Vendor ID", 1);
  const RegistryEntry controller = computer.AddThunderbolt("Ridge0", {{"UID", 1}});
  computer.AddService(controller, "Below", "", FullProperties);
  RecordedRegistry registry(computer.Recorded());
  HardwareRecord record;
  RecordSource source;
  EXPECT_EQ(FillThunderboltFields(registry, controller, &record, source), std::nullopt);
  EXPECT_EQ(record, (Record{{"RID", 1}, {"Ridge UID", 1}}));
}

TEST(ThunderboltFields, WithoutARecordReadNothing) {
  Computer computer;
  const RegistryEntry controller = computer.AddThunderbolt("Ridge0", FullProperties);
  LoggingRegistry registry(computer.Recorded());
  RecordSource source;
  EXPECT_EQ(FillThunderboltFields(registry, controller, nullptr, source), std::nullopt);
  EXPECT_EQ(registry.Calls(), CallList());
  EXPECT_EQ(source, RecordSource());
}

TEST(ThunderboltFields, WithoutARecordAMissingUidDoesNotMatter) {
  Computer computer;
  const RegistryEntry controller = computer.AddThunderbolt("Ridge0", {});
  LoggingRegistry registry(computer.Recorded());
  RecordSource source;
  EXPECT_EQ(FillThunderboltFields(registry, controller, nullptr, source), std::nullopt);
  EXPECT_EQ(registry.Calls(), CallList());
  EXPECT_EQ(source, RecordSource());
}

/// The calls of filling `record`.
CallList FillingCalls(const Record& properties, HardwareRecord record) {
  Computer computer;
  const RegistryEntry controller = computer.AddThunderbolt("Ridge0", properties);
  LoggingRegistry registry(computer.Recorded());
  RecordSource source;
  EXPECT_EQ(FillThunderboltFields(registry, controller, &record, source), std::nullopt);
  return registry.Calls();
}

TEST(ThunderboltFields, FetchUidOnceWhenTheRecordHasARid) {
  EXPECT_EQ(FillingCalls(FullProperties, {{"RID", 2}}),
            PropertyReads("Ridge0", {"Vendor ID", "Device ID", "Revision ID", "Device Model Name",
                                     "Device Model ID", "Device Model Revision", "Firmware Mode",
                                     "UID", "ROM Version", "EEPROM Revision"}));
}

TEST(ThunderboltFields, FetchNoEepromRevisionWhenRomVersionDoesNotRead) {
  const auto calls =
      PropertyReads("Ridge0", {"UID", "Vendor ID", "Device ID", "Revision ID", "Device Model Name",
                               "Device Model ID", "Device Model Revision", "Firmware Mode", "UID",
                               "ROM Version"});
  EXPECT_EQ(FillingCalls({{"UID", 1}, {"EEPROM Revision", 5}}, {}), calls);
  EXPECT_EQ(FillingCalls({{"UID", 1}, {"EEPROM Revision", 5}, {"ROM Version", "41"}}, {}), calls);
}

TEST(ThunderboltFields, NeverReplaceARid) {
  EXPECT_EQ(Filled({{"UID", 0x5A3}}, {{"RID", 2}}), (Record{{"RID", 2}, {"Ridge UID", 0x5A3}}));
}

TEST(ThunderboltFields, NeverReplaceARidOfAnyKind) {
  EXPECT_EQ(Filled({{"UID", 0x5A3}}, {{"RID", "two"}}),
            (Record{{"RID", "two"}, {"Ridge UID", 0x5A3}}));
}

TEST(ThunderboltFields, ReplaceAllElseAtItsPosition) {
  const HardwareRecord before{
      {"Engineering Version", "old"},
      {"Version", 171},
      {"Ridge UID", "old"},
      {"Firmware Mode", "old"},
      {"Device Model Revision", "old"},
      {"Device Model ID", "old"},
      {"Device Model Name", 7},
      {"Ridge Silicon Revision", "old"},
      {"Ridge Silicon Device ID", "old"},
      {"Ridge Silicon Vendor ID", "old"},
      {"RID", 9},
      {"Port Address", 0},
  };
  const HardwareRecord after{
      {"Engineering Version", 64},
      {"Version", 41.050000000999994},
      {"Ridge UID", 0x5A3},
      {"Firmware Mode", true},
      {"Device Model Revision", 6},
      {"Device Model ID", 5},
      {"Device Model Name", "Model"},
      {"Ridge Silicon Revision", 3},
      {"Ridge Silicon Device ID", 2},
      {"Ridge Silicon Vendor ID", -2147483647},
      {"RID", 9},
      {"Port Address", 0},
  };
  EXPECT_EQ(Filled(FullProperties, before), after);
}

TEST(ThunderboltFields, KeepWhatTheRecordContainsWhereNothingIsRead) {
  const HardwareRecord before{{"Version", 171}, {"Device Model Name", "Port"}, {"RID", 2}};
  EXPECT_EQ(
      Filled({{"UID", 1}, {"Device Model Name", 5}, {"EEPROM Revision", 5}}, before),
      (Record{{"Version", 171}, {"Device Model Name", "Port"}, {"RID", 2}, {"Ridge UID", 1}}));
}

struct UidRow {
  PropertyValue uid;
  int rid;
};

class NumericUid : public ::testing::TestWithParam<Named<UidRow>> {};

TEST_P(NumericUid, YieldsRidAndIsKeptWhole) {
  EXPECT_EQ(Filled({{"UID", GetParam().row.uid}}),
            (Record{{"RID", GetParam().row.rid}, {"Ridge UID", GetParam().row.uid}}));
}

const Named<UidRow> UidRows[] = {
    {"Zero", {0, 0}},
    {"NibbleF", {0x5AF, 15}},
    {"NothingInTheLowNibble", {0x5A0, 0}},
    {"Beyond32Bits", {0x1234567800000007, 7}},
    {"GreatestInteger", {AllOnes, 15}},
    {"MinusOne", {-1, 15}},
    {"LeastInteger", {std::numeric_limits<std::int64_t>::min(), 0}},
    {"BooleanTrue", {true, 1}},
    {"BooleanFalse", {false, 0}},
    {"Real", {19.9, 3}},
    {"NegativeReal", {-3.0, 0}},
    {"HugeReal", {1e300, 15}},
};

INSTANTIATE_TEST_SUITE_P(ThunderboltFields, NumericUid, ::testing::ValuesIn(UidRows), RowName);

TEST(ThunderboltFields, OfANanUid) {
  EXPECT_EQ(DumpText(Dictionary(Filled({{"UID", Nan}}))),
            "{\n"
            "    \"RID\" = 0;\n"
            "    \"Ridge UID\" = nan;\n"
            "}");
}

class OddThunderboltProperty : public ::testing::TestWithParam<NamedValue> {};

TEST_P(OddThunderboltProperty, AsUidYieldsNoRidAndIsKeptWhole) {
  EXPECT_EQ(Filled({{"UID", GetParam().row}}), (Record{{"Ridge UID", GetParam().row}}));
}

TEST_P(OddThunderboltProperty, LeavesOnlyItsOwnKeyOut) {
  const std::pair<const char*, const char*> targets[] = {
      {"Vendor ID", "Ridge Silicon Vendor ID"},           {"Device ID", "Ridge Silicon Device ID"},
      {"Revision ID", "Ridge Silicon Revision"},          {"Device Model ID", "Device Model ID"},
      {"Device Model Revision", "Device Model Revision"}, {"Firmware Mode", "Firmware Mode"},
  };
  for (const auto& [property, key] : targets) {
    SCOPED_TRACE(property);
    Record properties = FullProperties;
    properties.Set(property, GetParam().row);
    HardwareRecord record = FullRecord;
    record.SetOrRemove(key, nullptr);
    EXPECT_EQ(Filled(properties), record);
  }
}

TEST_P(OddThunderboltProperty, AsRomVersionLeavesBothVersionsOut) {
  EXPECT_EQ(Filled({{"UID", 1}, {"ROM Version", GetParam().row}, {"EEPROM Revision", 0x45}}),
            (Record{{"RID", 1}, {"Ridge UID", 1}}));
}

TEST_P(OddThunderboltProperty, AsEepromRevisionCountsAsZero) {
  EXPECT_EQ(
      Filled({{"UID", 1}, {"ROM Version", 0x23}, {"EEPROM Revision", GetParam().row}}),
      (Record{
          {"RID", 1}, {"Ridge UID", 1}, {"Version", 23.000000001}, {"Engineering Version", 0}}));
}

INSTANTIATE_TEST_SUITE_P(ThunderboltFields, OddThunderboltProperty,
                         ::testing::ValuesIn(NonNumbers()), RowName);

TEST(ThunderboltFields, KeepAnEmptyDeviceModelName) {
  EXPECT_EQ(Filled({{"UID", 1}, {"Device Model Name", ""}}),
            (Record{{"RID", 1}, {"Device Model Name", ""}, {"Ridge UID", 1}}));
}

TEST(ThunderboltFields, KeepADeviceModelNameAsItIs) {
  EXPECT_EQ(Filled({{"UID", 1}, {"Device Model Name", " M\u00F6del\n/\"3\" "}}),
            (Record{{"RID", 1}, {"Device Model Name", " M\u00F6del\n/\"3\" "}, {"Ridge UID", 1}}));
}

TEST(ThunderboltFields, LeaveOutADeviceModelNameThatIsNotAString) {
  const PropertyValue values[] = {Bytes("Model"),           5, 5.5, true, List({"Model"}), Date{5},
                                  Dict({{"Name", "Model"}})};
  for (const auto& value : values) {
    EXPECT_EQ(Filled({{"UID", 1}, {"Device Model Name", value}}),
              (Record{{"RID", 1}, {"Ridge UID", 1}}))
        << DumpText(value);
  }
}

TEST(ThunderboltFields, HaveFirmwareModeAsABoolean) {
  const std::pair<PropertyValue, bool> rows[] = {
      {2, true},           {0, false},   {true, true}, {false, false}, {-1, true},      {0.5, true},
      {0x100000000, true}, {0.0, false}, {Nan, true},  {-0.0, false},  {AllOnes, true},
  };
  for (const auto& [value, mode] : rows) {
    EXPECT_EQ(Filled({{"UID", 1}, {"Firmware Mode", value}}),
              (Record{{"RID", 1}, {"Firmware Mode", mode}, {"Ridge UID", 1}}))
        << DumpText(value);
  }
}

struct VersionRow {
  PropertyValue rom;
  std::optional<PropertyValue> eeprom;
  double version;
  int engineering;
};

class FirmwareVersionOf : public ::testing::TestWithParam<Named<VersionRow>> {};

TEST_P(FirmwareVersionOf, RomVersionAndEepromRevision) {
  const auto& row = GetParam().row;
  Record properties{{"UID", 1}, {"ROM Version", row.rom}};
  if (row.eeprom) properties.Set("EEPROM Revision", *row.eeprom);
  EXPECT_EQ(Filled(properties), (Record{{"RID", 1},
                                        {"Ridge UID", 1},
                                        {"Version", row.version},
                                        {"Engineering Version", row.engineering}}));
}

const Named<VersionRow> VersionRows[] = {
    {"MajorAndMinor", {0x41, 0x05, 41.050000000999994, 0}},
    {"MarkerLowBit", {0x41, 0x45, 41.050000000999994, 64}},
    {"MarkerHighBit", {0x41, 0x85, 41.050000000999994, 128}},
    {"MarkerBothBits", {0x41, 0xC5, 41.050000000999994, 192}},
    {"MarkerWithoutMinor", {0x41, 0x40, 41.000000001, 64}},
    {"NoEepromRevision", {0x23, std::nullopt, 23.000000001, 0}},
    {"NoMajor", {0x0, 0x3F, 0.630000001, 0}},
    {"ThreeDigitsAndGreatestMinor", {0x123, 0x3F, 123.630000001, 0}},
    {"NotDecimal", {0x1A, 0x07, 20.070000001, 0}},
    {"NothingAtAll", {0x0, 0x0, 1e-9, 0}},
    {"TwoDigits", {0x99, 0x3F, 99.630000001, 0}},
    {"EightDigits", {0x99999999u, 0x3F, 99999999.63, 0}},
    {"GreatestOfAll", {0xFFFFFFFFu, 0xFFFFFFFFu, 166666665.63, 192}},
    {"RomBeyond32Bits", {0x300000041, 0x05, 41.050000000999994, 0}},
    {"EepromBeyondItsLowByte", {0x41, 0x7FFFFF05, 41.050000000999994, 0}},
    {"NegativeRom", {-1, 0x3F, 166666665.63, 0}},
    {"NegativeEeprom", {0x41, -1, 41.630000001, 192}},
    {"RealRom", {65.9, 0x05, 41.050000000999994, 0}},
    {"RealEeprom", {0x41, 5.9, 41.050000000999994, 0}},
    {"NegativeRealRom", {-65.0, 0x05, 0.050000001, 0}},
    {"NanRom", {Nan, 0x05, 0.050000001, 0}},
    {"BooleanRomAndEeprom", {true, true, 1.010000001, 0}},
};

INSTANTIATE_TEST_SUITE_P(ThunderboltFields, FirmwareVersionOf, ::testing::ValuesIn(VersionRows),
                         RowName);

TEST(ThunderboltFields, WithoutRomVersionHaveNoVersionWhateverTheEepromRevision) {
  EXPECT_EQ(Filled({{"UID", 1}, {"EEPROM Revision", 0x05}}),
            (Record{{"RID", 1}, {"Ridge UID", 1}}));
}

TEST(ThunderboltFields, WithoutUidAreAFault) {
  EXPECT_EQ(FilledOrFault({}, {}).second, Fault::MissingUid);
}

TEST(ThunderboltFields, WithoutUidButAllElseAreAFault) {
  const auto [record, fault] = FilledOrFault(Without(FullProperties, "UID"), {{"RID", 2}});
  EXPECT_EQ(fault, Fault::MissingUid);
  EXPECT_EQ(record.Find("Ridge UID"), nullptr);
}

TEST(ThunderboltInventory, AnOwnControllerWithoutUidIsAFault) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({}));
  computer.AddThunderbolt("Ridge1", {{"Depth", 0}, {"Route String", 0}});
  EXPECT_EQ(InventoryOf(computer), InventoryResult(Fault::MissingUid));
}

TEST(ThunderboltInventory, AFaultEndsThePassAtTheMissingUidAndReleasesTheIterator) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({{"ROM Version", 1}}));
  computer.AddThunderbolt("Ridge1", {{"Depth", 0}, {"Route String", 0}, {"ROM Version", 1}});
  computer.AddThunderbolt("Ridge2", OwnController({}));
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(CollectThunderboltControllers(registry), InventoryResult(Fault::MissingUid));
  EXPECT_EQ(registry.Calls(),
            Joined({{"MatchServicesByClass IOThunderboltSwitch", "ResetIterator iterator 1"},
                    {"NextEntry iterator 1"},
                    PlaceReads("Ridge0"),
                    ThunderboltFieldReads("Ridge0"),
                    {"NextEntry iterator 1"},
                    PlaceReads("Ridge1"),
                    PropertyReads("Ridge1", {"UID", "Vendor ID", "Device ID", "Revision ID",
                                             "Device Model Name", "Device Model ID",
                                             "Device Model Revision", "Firmware Mode", "UID"}),
                    {"ReleaseEntry iterator 1"}}));
}

TEST(ThunderboltInventory, AnotherControllerNeedsNoUid) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", OwnController({}));
  computer.AddThunderbolt("Ridge1", {{"Depth", 1}, {"Route String", 1}});
  EXPECT_EQ(CollectedFrom(computer), Listed({{{"RID", 3}, {"Ridge UID", 0x5A3}}}));
}

TEST(ThunderboltInventory, RecordsWhereEachControllerIsAndWhyOneIsSkipped) {
  Computer computer;
  const auto own =
      computer.AddThunderbolt("ridge0", {{"UID", 7}, {"Depth", 0}, {"Route String", 0}});
  const auto dock =
      computer.AddThunderbolt("dock", {{"UID", 7}, {"Depth", 1}, {"Route String", 1}});
  const auto versioned = computer.AddThunderbolt("ridge1", OwnController({{"ROM Version", 1}}));
  const auto nameless = computer.AddThunderbolt("ridge2", OwnController({{"UID", "seven"}}));
  const auto inventory = InventoryOf(computer);
  ASSERT_TRUE(inventory);
  EXPECT_EQ(
      inventory->sources,
      (std::vector<RecordSource>{
          {.thunderbolt = own, .rid = Origin::Thunderbolt},
          {.thunderbolt = versioned, .rid = Origin::Thunderbolt, .version = Origin::Thunderbolt},
          {.thunderbolt = nameless},
      }));
  EXPECT_EQ(inventory->skipped,
            (std::vector<SkippedController>{{dock, SkipReason::NotAtRootOfTopology}}));
}

}  // namespace
}  // namespace fernwick
