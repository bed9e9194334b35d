#include "registry/key_schema.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "registry/port_inventory.h"
#include "registry/recorded_registry.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/distinctness.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::SingleEntry;
using testing::With;

using Names = std::set<std::string>;
using Sources = std::vector<PropertySource>;

template <typename Predicate>
Names NamesWhere(Predicate predicate) {
  Names names;
  for (const auto& key : KeySchema()) {
    if (predicate(key)) names.emplace(key.name);
  }
  return names;
}

HardwareInventory PortsOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  const auto ports = CollectPortControllers(registry);
  EXPECT_TRUE(ports);
  return ports ? *ports : HardwareInventory();
}

HardwareInventory ThunderboltControllersOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  const auto controllers = CollectThunderboltControllers(registry);
  EXPECT_TRUE(controllers);
  return controllers ? *controllers : HardwareInventory();
}

// The one record of an inventory, and where its values were read.
std::pair<HardwareRecord, RecordSource> OnlyRecordOf(const HardwareInventory& inventory) {
  EXPECT_EQ(inventory.records.size(), 1u);
  if (inventory.records.empty()) return {};
  return {inventory.records.front(), inventory.sources.front()};
}

// A port below a Thunderbolt controller.
struct Below {
  Computer computer;
  RegistryEntry ridge;
  RegistryEntry port;
};

Below PortBelow(const Record& ridgeProperties, const Record& portProperties) {
  Below below{{}, 0, 0};
  below.ridge = below.computer.AddThunderbolt("ridge0", With({{"UID", "x"}}, ridgeProperties));
  below.port = below.computer.AddService(below.ridge, "hpm0", "QuinceHPMDevice", portProperties);
  return below;
}

// A property that the conversion reads: each conversion has another result for its number.
PropertyValue Readable(Conversion conversion) {
  return conversion == Conversion::Text ? PropertyValue("Grat") : PropertyValue(0x1D2);
}

// The value in the record for that property.
PropertyValue Converted(Conversion conversion) {
  switch (conversion) {
    case Conversion::Signed32: return 0x1D2;
    case Conversion::Bcd: return 232;
    case Conversion::LowNibble: return 2;
    case Conversion::NonZero: return true;
    case Conversion::Text: return "Grat";
    case Conversion::AsIs: return 0x1D2;
    case Conversion::ThunderboltVersion: return 232.000000001;
    case Conversion::EngineeringBits: return 0xC0;
    case Conversion::None: break;
  }
  return "none";
}

// The property alone; "EEPROM Revision" counts only beside "ROM Version".
Record Alone(const PropertyOrigin& origin) {
  auto properties = SingleEntry(origin.property, Readable(origin.conversion));
  if (origin.property == "EEPROM Revision") properties.Set("ROM Version", 1);
  return properties;
}

TEST(KeySchema, NamesEachKeyOnce) {
  EXPECT_EQ(NamesWhere([](const Key&) { return true; }).size(), KeySchema().size());
}

TEST(KeySchema, HasAPropertyForEachConversion) {
  for (const auto& key : KeySchema()) {
    for (const auto& origin : {key.port, key.thunderbolt}) {
      EXPECT_EQ(origin.property.empty(), origin.conversion == Conversion::None) << key.name;
    }
  }
}

TEST(KeySchema, KnowsThePropertyOfThePortAndItsConversion) {
  for (const auto& key : KeySchema()) {
    if (key.port.property.empty()) continue;
    Computer computer;
    const auto port = computer.AddPort("hpm0", Alone(key.port));
    const auto [record, source] = OnlyRecordOf(PortsOf(computer));
    EXPECT_EQ(record, (Record{{key.name, Converted(key.port.conversion)}})) << key.name;
    const auto sources = SourcesOf(key.name, source);
    ASSERT_EQ(sources.size(), 1u) << key.name;
    EXPECT_EQ(sources.front().entry, port) << key.name;
    EXPECT_EQ(sources.front().property, key.port.property) << key.name;
  }
}

TEST(KeySchema, KnowsThePropertyOfTheThunderboltControllerAndItsConversion) {
  for (const auto& key : KeySchema()) {
    if (key.thunderbolt.property.empty()) continue;
    const auto below = PortBelow(Alone(key.thunderbolt), {});
    const auto [record, source] = OnlyRecordOf(PortsOf(below.computer));
    ASSERT_NE(record.Find(key.name), nullptr) << key.name;
    EXPECT_EQ(*record.Find(key.name), Converted(key.thunderbolt.conversion)) << key.name;
    const auto sources = SourcesOf(key.name, source);
    ASSERT_FALSE(sources.empty()) << key.name;
    EXPECT_EQ(sources.front().entry, below.ridge) << key.name;
    EXPECT_EQ(sources.front().property, key.thunderbolt.property) << key.name;
  }
}

// Every property that the schema names.
Record FullPort() {
  Record properties;
  for (const auto& key : KeySchema()) {
    if (!key.port.property.empty()) {
      properties.Set(key.port.property, Readable(key.port.conversion));
    }
  }
  properties.Set("Address", 0);
  return properties;
}

Record FullThunderboltController() {
  Record properties;
  for (const auto& key : KeySchema()) {
    if (!key.thunderbolt.property.empty()) {
      properties.Set(key.thunderbolt.property, Readable(key.thunderbolt.conversion));
    }
  }
  return With(properties, {{"Depth", 0}, {"Route String", 0}});
}

Names KeysOf(const Record& record) {
  Names names;
  for (const auto& entry : record.Entries()) names.emplace(entry.key);
  return names;
}

TEST(KeySchema, HasEveryKeyOfAPortAndNoOther) {
  Computer computer;
  computer.AddPort("hpm0", With(FullPort(), FullThunderboltController()));
  EXPECT_EQ(KeysOf(OnlyRecordOf(PortsOf(computer)).first),
            NamesWhere([](const Key& key) { return !key.port.property.empty(); }));
}

TEST(KeySchema, HasEveryKeyOfAThunderboltControllerAndNoOther) {
  Computer computer;
  computer.AddThunderbolt("ridge0", With(FullPort(), FullThunderboltController()));
  EXPECT_EQ(KeysOf(OnlyRecordOf(ThunderboltControllersOf(computer)).first),
            NamesWhere([](const Key& key) { return !key.thunderbolt.property.empty(); }));
}

TEST(KeySchema, HasEveryKeyOfAPortBelowAThunderboltControllerAndNoOther) {
  const auto below = PortBelow(FullThunderboltController(), FullPort());
  EXPECT_EQ(KeysOf(OnlyRecordOf(PortsOf(below.computer)).first), NamesWhere([](const Key& key) {
              return !key.port.property.empty() || !key.thunderbolt.property.empty();
            }));
}

TEST(KeySchema, IsTheOrderInWhichAPortIsRead) {
  Computer computer;
  computer.AddPort("hpm0", FullPort());
  std::vector<std::string> order;
  for (const auto& key : KeySchema()) {
    if (!key.port.property.empty()) order.emplace_back(key.name);
  }
  const auto record = OnlyRecordOf(PortsOf(computer)).first;
  std::vector<std::string> written;
  for (const auto& entry : record.Entries()) {
    written.emplace_back(entry.key);
  }
  EXPECT_EQ(written, order);
}

TEST(KeySchema, HasATypeForEveryKeyThatIsReadFromAPersonality) {
  for (const auto& key : KeySchema()) {
    const bool isRead = (key.checkedBy | key.plannedBy) != Types::None;
    EXPECT_EQ(isRead, key.kind != KeyKind::NotRead) << key.name;
    EXPECT_EQ(key.requiredBy & ~(key.checkedBy | key.plannedBy), Types::None) << key.name;
  }
}

TEST(KeySchema, RequiresTheVersionTheFirmwareAndTheSilicon) {
  const auto requiredBy = [](TypeSet type) {
    return NamesWhere([type](const Key& key) { return (key.requiredBy & type) != 0; });
  };
  const Names always = {"Version", "Firmware"};
  const Names port = {"Port Silicon Vendor ID", "Port Silicon Device ID", "Port Silicon Revision"};
  const Names ridge = {"Ridge Silicon Vendor ID", "Ridge Silicon Device ID",
                       "Ridge Silicon Revision"};
  Names usbc = always;
  usbc.insert(port.begin(), port.end());
  Names legacyThunderbolt = always;
  legacyThunderbolt.insert(ridge.begin(), ridge.end());
  Names thunderbolt = usbc;
  thunderbolt.insert(ridge.begin(), ridge.end());
  EXPECT_EQ(requiredBy(Types::LegacyUsbc), always);
  EXPECT_EQ(requiredBy(Types::Usbc), usbc);
  EXPECT_EQ(requiredBy(Types::LegacyThunderbolt), legacyThunderbolt);
  EXPECT_EQ(requiredBy(Types::Thunderbolt), thunderbolt);
}

// A list of values is compared with a value of the controller, which then has the key.
TEST(KeySchema, HasAPropertyForEveryKeyThatMayBeAList) {
  for (const auto& key : KeySchema()) {
    const bool mayBeAList = key.kind == KeyKind::NumberOrList ||
                            key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
    const bool isOfHardware = !key.port.property.empty() || !key.thunderbolt.property.empty();
    if (mayBeAList) {
      EXPECT_TRUE(isOfHardware) << key.name;
    }
  }
}

// What a record has as text is compared as text, all else as a number.
TEST(KeySchema, HasTheKindOfTheControllersValue) {
  for (const auto& key : KeySchema()) {
    const bool isText =
        key.port.conversion == Conversion::Text || key.thunderbolt.conversion == Conversion::Text;
    const bool acceptsText =
        key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
    EXPECT_EQ(acceptsText, isText) << key.name;
  }
}

TEST(FindKey, IsExact) {
  for (const auto& key : KeySchema()) EXPECT_EQ(FindKey(key.name), &key);
  for (const auto* name : {"version", "Version ", "", "Personality Type", "Depth", "UID"}) {
    EXPECT_EQ(FindKey(name), nullptr) << name;
  }
}

TEST(FindPersonalityKey, IsExactAndLeavesOutWhatOnlyHardwareHas) {
  for (const auto& key : KeySchema()) {
    EXPECT_EQ(FindPersonalityKey(key.name), key.name == "Engineering Version" ? nullptr : &key);
  }
  for (const auto* name : {"version", "Version ", "", "Personality Type", "Depth", "UID"}) {
    EXPECT_EQ(FindPersonalityKey(name), nullptr) << name;
  }
}

TEST(TypeNamed, IsExact) {
  EXPECT_EQ(TypeNamed("LegacyThunderbolt"), Types::LegacyThunderbolt);
  EXPECT_EQ(TypeNamed("Thunderbolt"), Types::Thunderbolt);
  EXPECT_EQ(TypeNamed("LegacyUSBC"), Types::LegacyUsbc);
  EXPECT_EQ(TypeNamed("USBC"), Types::Usbc);
  EXPECT_EQ(TypeNamed("usbc"), Types::None);
  EXPECT_EQ(TypeNamed(""), Types::None);
}

// Numbers at every edge of what a property can be.
const std::vector<PropertyValue> Extremes = {0,
                                             1,
                                             15,
                                             16,
                                             -1,
                                             0x7FFFFFFF,
                                             0x80000000u,
                                             0xFFFFFFFFu,
                                             0x100000000,
                                             0.5,
                                             -0.5,
                                             1e300,
                                             -1e300,
                                             true,
                                             false,
                                             std::numeric_limits<std::uint64_t>::max(),
                                             std::numeric_limits<std::int64_t>::min(),
                                             std::nan("")};

// Returns how many numbers it looked at.
int ExpectWithin(const HardwareRecord& record, TypeSet type) {
  int count = 0;
  for (const auto& [name, value] : record.Entries()) {
    const auto* key = FindKey(name);
    if (key->kind != KeyKind::NumberOrList || (key->checkedBy & type) == 0) continue;
    const auto range = NumbersOfControllers(*key, type);
    if (!range) continue;
    const auto number = value.AsNumber();
    EXPECT_TRUE(number && CompareNumbers(*number, range->lowest) >= 0) << name;
    EXPECT_TRUE(number && CompareNumbers(*number, range->highest) <= 0) << name;
    EXPECT_EQ(value.AsReal(), std::nullopt) << name;
    ++count;
  }
  return count;
}

Record Everything(const PropertyValue& value, bool withAddress) {
  Record properties = {{"Depth", 0}, {"Route String", 0}, {"UID", value}};
  for (const char* key : {"RID", "Vendor ID", "Device ID", "Revision ID", "Revision",
                          "Device Model ID", "Device Model Revision", "Firmware Mode"}) {
    properties.Set(key, value);
  }
  if (withAddress) properties.Set("Address", value);
  return properties;
}

TEST(NumbersOfControllers, ContainWhateverTheRegistryHas) {
  for (const auto& value : Extremes) {
    Computer computer;
    const auto ridge = computer.AddThunderbolt("Ridge", Everything(value, false));
    computer.AddService(ridge, "Below", PortControllerClass, Everything(value, true));
    computer.AddPort("Lone", Everything(value, true));
    for (const auto& record : ThunderboltControllersOf(computer).records) {
      EXPECT_EQ(ExpectWithin(record, Types::LegacyThunderbolt), 4);
    }
    for (const auto& record : PortsOf(computer).records) {
      EXPECT_EQ(ExpectWithin(record, Types::LegacyUsbc), 1);
      EXPECT_EQ(ExpectWithin(record, Types::Usbc), 6);
      if (record.Find("Ridge UID") != nullptr) {
        EXPECT_EQ(ExpectWithin(record, Types::Thunderbolt), 12);
      }
    }
  }
}

struct RangeRow {
  TypeSet type;
  const char* key;
  Integer lowest;
  Integer highest;
};

TEST(NumbersOfControllers, AreNarrowWhereTheInventoryMakesThemSo) {
  constexpr Integer Min = std::numeric_limits<std::int32_t>::min();
  constexpr Integer Max = std::numeric_limits<std::int32_t>::max();
  const RangeRow rows[] = {
      {Types::LegacyThunderbolt, "RID", 0, 15},
      {Types::Thunderbolt, "RID", Min, Max},
      {Types::Usbc, "RID", Min, Max},
      {Types::Thunderbolt, "Port Address", 0, 0},
      {Types::Usbc, "Port Address", Min, Max},
      {Types::LegacyUsbc, "Port Address", Min, Max},
      {Types::Thunderbolt, "Firmware Mode", 0, 1},
      {Types::Thunderbolt, "Device Model ID", Min, Max},
      {Types::LegacyThunderbolt, "Ridge Silicon Vendor ID", Min, Max},
  };
  for (const auto& [type, key, lowest, highest] : rows) {
    const auto range = NumbersOfControllers(*FindKey(key), type);
    ASSERT_TRUE(range.has_value()) << key;
    EXPECT_EQ(range->lowest, lowest) << key << " under " << type;
    EXPECT_EQ(range->highest, highest) << key << " under " << type;
  }
  for (const TypeSet type : {Types::LegacyThunderbolt, Types::Thunderbolt}) {
    EXPECT_FALSE(NumbersOfControllers(*FindKey("Ridge UID"), type).has_value());
  }
}

RecordSource SourceOf(const Below& below) {
  return OnlyRecordOf(PortsOf(below.computer)).second;
}

TEST(SourcesOf, RidOfAPortIsItsOwnBeforeTheThunderboltControllers) {
  const auto own = PortBelow({{"UID", 7}}, {{"RID", 2}});
  EXPECT_EQ(SourcesOf("RID", SourceOf(own)), (Sources{{own.port, "RID", ""}}));
  const auto ridges = PortBelow({{"UID", 7}}, {});
  EXPECT_EQ(SourcesOf("RID", SourceOf(ridges)), (Sources{{ridges.ridge, "UID", "the low 4 bits"}}));
}

TEST(SourcesOf, VersionOfAPortIsTheThunderboltControllersWhereThatHasOne) {
  const auto ridges = PortBelow({{"ROM Version", 0x41}}, {{"Version", 0x171}});
  EXPECT_EQ(
      SourcesOf("Version", SourceOf(ridges)),
      (Sources{{ridges.ridge, "ROM Version", "decoded as BCD"},
               {ridges.ridge, "EEPROM Revision", "the low 6 bits are hundredths; 1e-9 is added"}}));
  const auto own = PortBelow({{"EEPROM Revision", 5}}, {{"Version", 0x171}});
  EXPECT_EQ(SourcesOf("Version", SourceOf(own)),
            (Sources{{own.port, "Version", "decoded as BCD"}}));
}

TEST(SourcesOf, AKeyThatIsMissingIsEverythingThatCouldHaveProvidedIt) {
  const auto below = PortBelow({}, {{"RID", "2"}});
  const auto source = SourceOf(below);
  EXPECT_EQ(SourcesOf("RID", source),
            (Sources{{below.port, "RID", ""}, {below.ridge, "UID", "the low 4 bits"}}));
  EXPECT_EQ(SourcesOf("Version", source),
            (Sources{{below.port, "Version", "decoded as BCD"},
                     {below.ridge, "ROM Version", "decoded as BCD"}}));
  EXPECT_EQ(SourcesOf("Port OTP Revision", source), (Sources{{below.port, "Revision", ""}}));
  EXPECT_EQ(SourcesOf("Device Model ID", source), (Sources{{below.ridge, "Device Model ID", ""}}));
}

TEST(SourcesOf, AThunderboltKeyOfAPortBelowNoneIsNothing) {
  Computer computer;
  computer.AddPort("hpm0", {});
  EXPECT_EQ(SourcesOf("Ridge UID", OnlyRecordOf(PortsOf(computer)).second), Sources{});
}

TEST(SourcesOf, AThunderboltControllerIsTheControllerItself) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt(
      "ridge0", {{"Depth", 0}, {"Route String", 0}, {"UID", 7}, {"Vendor ID", 5}});
  const auto source = OnlyRecordOf(ThunderboltControllersOf(computer)).second;
  EXPECT_EQ(SourcesOf("Ridge Silicon Vendor ID", source), (Sources{{ridge, "Vendor ID", ""}}));
  EXPECT_EQ(SourcesOf("RID", source), (Sources{{ridge, "UID", "the low 4 bits"}}));
  EXPECT_EQ(SourcesOf("Ridge UID", source), (Sources{{ridge, "UID", ""}}));
  EXPECT_EQ(SourcesOf("Engineering Version", source),
            (Sources{{ridge, "EEPROM Revision", "bits 6 and 7"}}));
  EXPECT_EQ(SourcesOf("Port Address", source), Sources{});
}

TEST(SourcesOf, AKeyThatNoRecordHasIsNothing) {
  EXPECT_EQ(SourcesOf("MinBoardRevision", {.port = 1, .thunderbolt = 2}), Sources{});
  EXPECT_EQ(SourcesOf("version", {.port = 1, .thunderbolt = 2}), Sources{});
}

// What tests compare is compared whole.
TEST(PropertySource, DiffersByEachOfItsMembers) {
  testing::ExpectDistinct<PropertySource>({1, "RID", ""},
                                          {{2, "RID", ""}, {1, "Version", ""}, {1, "RID", "x"}});
}

}  // namespace
}  // namespace fernwick
