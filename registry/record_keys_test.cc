#include "registry/record_keys.h"

#include <gtest/gtest.h>

#include <string>

#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/distinctness.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::Holding;
using testing::With;

using Sources = std::vector<PropertySource>;

// The one record of the computer's ports, and where it has its values from.
std::pair<HardwareRecord, RecordSource> PortOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  InventoryRecorder recorder;
  const auto ports = CollectPortControllers(registry, &recorder);
  EXPECT_EQ(recorder.listed.size(), 1u);
  return {ports.value().front(), recorder.listed.front()};
}

// A port below a Thunderbolt controller.
struct Below {
  Computer computer;
  RegistryEntry ridge;
  RegistryEntry port;
};

Below PortBelow(const Dictionary& ridgeProperties, const Dictionary& portProperties) {
  Below below{{}, 0, 0};
  below.ridge = below.computer.AddThunderbolt("ridge0", With({{"UID", "x"}}, ridgeProperties));
  below.port = below.computer.AddService(below.ridge, "hpm0", "QuinceHPMDevice", portProperties);
  return below;
}

// A value that a property is read as, whatever the property.
PropertyValue Readable(std::string_view property) {
  if (property == "UUID" || property == "Device Model Name") return "Grat";
  return 5;
}

// "EEPROM Revision" has a say only beside "ROM Version".
Dictionary Alone(std::string_view property) {
  auto properties = Holding(property, Readable(property));
  if (property == "EEPROM Revision") properties.Set("ROM Version", 1);
  return properties;
}

TEST(RecordKeys, ComeFromThePropertyOfThePort) {
  for (const auto& [key, portProperty, thunderboltProperty] : RecordKeys) {
    if (portProperty.empty()) continue;
    Computer computer;
    const auto port = computer.AddPort("hpm0", Holding(portProperty, Readable(portProperty)));
    const auto [record, source] = PortOf(computer);
    EXPECT_NE(record.Find(key), nullptr) << key;
    const auto sources = SourcesOf(key, source);
    ASSERT_EQ(sources.size(), 1u) << key;
    EXPECT_EQ(sources.front().entry, port) << key;
    EXPECT_EQ(sources.front().property, portProperty) << key;
  }
}

TEST(RecordKeys, ComeFromThePropertyOfTheThunderboltController) {
  for (const auto& [key, portProperty, thunderboltProperty] : RecordKeys) {
    if (thunderboltProperty.empty()) continue;
    const auto below = PortBelow(Alone(thunderboltProperty), {});
    const auto [record, source] = PortOf(below.computer);
    EXPECT_NE(record.Find(key), nullptr) << key;
    const auto sources = SourcesOf(key, source);
    ASSERT_FALSE(sources.empty()) << key;
    EXPECT_EQ(sources.front().entry, below.ridge) << key;
    EXPECT_EQ(sources.front().property, thunderboltProperty) << key;
  }
}

TEST(RecordKeys, AreAllThatARecordHolds) {
  Dictionary port;
  Dictionary ridge;
  for (const auto& [key, portProperty, thunderboltProperty] : RecordKeys) {
    if (!portProperty.empty()) port.Set(portProperty, Readable(portProperty));
    if (!thunderboltProperty.empty()) {
      ridge.Set(thunderboltProperty, Readable(thunderboltProperty));
    }
  }
  port.Set("Address", 0);
  const auto record = PortOf(PortBelow(ridge, port).computer).first;
  EXPECT_EQ(record.Size(), std::size(RecordKeys));
  for (const auto& row : RecordKeys) EXPECT_NE(record.Find(row.key), nullptr) << row.key;
}

TEST(SourcesOf, RidOfAPortIsItsOwnBeforeTheThunderboltControllers) {
  const auto own = PortBelow({{"UID", 7}}, {{"RID", 2}});
  EXPECT_EQ(SourcesOf("RID", PortOf(own.computer).second), (Sources{{own.port, "RID", ""}}));
  const auto ridges = PortBelow({{"UID", 7}}, {});
  EXPECT_EQ(SourcesOf("RID", PortOf(ridges.computer).second),
            (Sources{{ridges.ridge, "UID", "the low 4 bits"}}));
}

TEST(SourcesOf, VersionOfAPortIsTheThunderboltControllersWhereThatTellsOne) {
  const auto ridges = PortBelow({{"ROM Version", 0x41}}, {{"Version", 0x171}});
  EXPECT_EQ(
      SourcesOf("Version", PortOf(ridges.computer).second),
      (Sources{{ridges.ridge, "ROM Version", "decoded as BCD"},
               {ridges.ridge, "EEPROM Revision", "the low 6 bits are hundredths; 1e-9 is added"}}));
  const auto own = PortBelow({{"EEPROM Revision", 5}}, {{"Version", 0x171}});
  EXPECT_EQ(SourcesOf("Version", PortOf(own.computer).second),
            (Sources{{own.port, "Version", "decoded as BCD"}}));
}

TEST(SourcesOf, AKeyThatIsMissingIsEverythingThatCouldHaveGivenIt) {
  const auto below = PortBelow({}, {{"RID", "2"}});
  const auto source = PortOf(below.computer).second;
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
  EXPECT_EQ(SourcesOf("Ridge UID", PortOf(computer).second), Sources{});
}

TEST(SourcesOf, AThunderboltControllerIsTheControllerItself) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt(
      "ridge0", {{"Depth", 0}, {"Route String", 0}, {"UID", 7}, {"Vendor ID", 5}});
  RecordedRegistry registry(computer.Recorded());
  InventoryRecorder recorder;
  CollectThunderboltControllers(registry, &recorder);
  ASSERT_EQ(recorder.listed.size(), 1u);
  const auto& source = recorder.listed.front();
  EXPECT_EQ(SourcesOf("Ridge Silicon Vendor ID", source), (Sources{{ridge, "Vendor ID", ""}}));
  EXPECT_EQ(SourcesOf("RID", source), (Sources{{ridge, "UID", "the low 4 bits"}}));
  EXPECT_EQ(SourcesOf("Ridge UID", source), (Sources{{ridge, "UID", ""}}));
  EXPECT_EQ(SourcesOf("Engineering Version", source),
            (Sources{{ridge, "EEPROM Revision", "bits 6 and 7"}}));
  EXPECT_EQ(SourcesOf("Port Address", source), Sources{});
}

TEST(SourcesOf, AKeyThatNoRecordHoldsIsNothing) {
  EXPECT_EQ(SourcesOf("MinBoardRevision", {.port = 1, .thunderbolt = 2}), Sources{});
}

// What tests compare is compared whole.
TEST(PropertySource, DiffersByEachOfItsMembers) {
  testing::ExpectDistinct<PropertySource>({1, "RID", ""},
                                          {{2, "RID", ""}, {1, "Version", ""}, {1, "RID", "x"}});
}

}  // namespace
}  // namespace fernwick
