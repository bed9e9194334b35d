#include "lab/lint/controller_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "personality/requirements.h"
#include "registry/port_inventory.h"
#include "registry/recorded_registry.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

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

void ExpectWithin(const HardwareRecord& record, TypeSet type) {
  for (const auto& [key, value] : record.Entries()) {
    if (!value.IsNumber() || key == "Version" || key == "Engineering Version") continue;
    const auto range = NumbersOfControllers(*FindKey(key), type);
    if (!range) continue;
    EXPECT_FALSE(NumberLess(value, range->lowest)) << key;
    EXPECT_FALSE(NumberGreater(value, range->highest)) << key;
    EXPECT_EQ(value.AsReal(), std::nullopt) << key;
  }
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
    testing::Computer computer;
    const auto ridge = computer.AddThunderbolt("Ridge", Everything(value, false));
    computer.AddService(ridge, "Below", PortControllerClass, Everything(value, true));
    computer.AddPort("Lone", Everything(value, true));
    RecordedRegistry registry(computer.Recorded());
    const auto controllers = CollectThunderboltControllers(registry);
    const auto ports = CollectPortControllers(registry);
    ASSERT_TRUE(controllers && ports);
    for (const auto& record : controllers->records) {
      ExpectWithin(record, Types::LegacyThunderbolt);
    }
    for (const auto& record : ports->records) {
      ExpectWithin(record, Types::Usbc);
      if (record.Find("Ridge UID") != nullptr) ExpectWithin(record, Types::Thunderbolt);
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
  };
  for (const auto& [type, key, lowest, highest] : rows) {
    const auto range = NumbersOfControllers(*FindKey(key), type);
    ASSERT_TRUE(range.has_value()) << key;
    EXPECT_EQ(range->lowest, lowest) << key << " under " << type;
    EXPECT_EQ(range->highest, highest) << key << " under " << type;
  }
  EXPECT_FALSE(NumbersOfControllers(*FindKey("Ridge UID"), Types::LegacyThunderbolt).has_value());
}

RevisionRange Revisions(const PropertyValue& minimum, const PropertyValue& maximum) {
  return RevisionsWithin(&minimum, &maximum);
}

TEST(RevisionsWithin, AreThoseThatTheCheckAccepts) {
  EXPECT_EQ(RevisionsWithin(nullptr, nullptr), (RevisionRange{0, 255}));
  EXPECT_EQ(Revisions(3, 3), (RevisionRange{3, 3}));
  EXPECT_EQ(Revisions(2.5, 4.5), (RevisionRange{3, 4}));
  EXPECT_EQ(Revisions(-7, 1000), (RevisionRange{0, 255}));
  EXPECT_EQ(Revisions(std::nan(""), std::nan("")), (RevisionRange{0, 255}));
  EXPECT_TRUE(Revisions(4, 3).IsEmpty());
  EXPECT_TRUE(Revisions(3.2, 3.8).IsEmpty());
  EXPECT_TRUE(Revisions(256, 300).IsEmpty());
  EXPECT_TRUE(Revisions(-2, -1).IsEmpty());
  EXPECT_TRUE(Revisions("3", 4).IsEmpty());
  EXPECT_TRUE(Revisions(3, "4").IsEmpty());
}

constexpr VersionScales ThunderboltOnly = {.thunderbolt = true, .port = false};
constexpr VersionScales PortOnly = {.thunderbolt = false, .port = true};
constexpr VersionScales Both;

std::vector<PropertyValue> LowestFrom(VersionScales scales, const PropertyValue& minimum) {
  return LowestInstalledVersions(scales, &minimum);
}

using Versions = std::vector<PropertyValue>;

TEST(LowestInstalledVersions, AreOfThunderboltControllersAndOfPorts) {
  EXPECT_EQ(LowestInstalledVersions(ThunderboltOnly, nullptr), (Versions{1e-9}));
  EXPECT_EQ(LowestInstalledVersions(Both, nullptr), (Versions{1e-9, std::uint64_t{0}}));
  EXPECT_EQ(LowestFrom(Both, 41.05), (Versions{41.050000000999994, std::uint64_t{42}}));
  EXPECT_EQ(LowestFrom(ThunderboltOnly, 41.64), (Versions{42.000000001}));
  EXPECT_EQ(LowestFrom(Both, 166666666), (Versions{}));
  EXPECT_EQ(LowestFrom(Both, 166666665), (Versions{166666665.0, std::uint64_t{166666665}}));
  EXPECT_EQ(LowestFrom(Both, std::nan("")), (Versions{1e-9, std::uint64_t{0}}));
}

TEST(LowestInstalledVersions, AreWholeNumbersWithoutThunderboltControllers) {
  EXPECT_EQ(LowestFrom(PortOnly, 41.05), (Versions{std::uint64_t{42}}));
  EXPECT_EQ(LowestInstalledVersions(PortOnly, nullptr), (Versions{std::uint64_t{0}}));
}

VersionScales ScalesOf(TypeSet type, const PropertyValue& portAddress) {
  return VersionScalesOf(type, &portAddress);
}

TEST(VersionScalesOf, LacksThunderboltWhereTheAddressExcludesZero) {
  EXPECT_EQ(VersionScalesOf(Types::LegacyThunderbolt, nullptr), ThunderboltOnly);
  EXPECT_EQ(VersionScalesOf(Types::Usbc, nullptr), Both);
  EXPECT_EQ(ScalesOf(Types::Usbc, 0), Both);
  EXPECT_EQ(ScalesOf(Types::Usbc, testing::List({0x38, 0})), Both);
  EXPECT_EQ(ScalesOf(Types::Usbc, 0x38), PortOnly);
  EXPECT_EQ(ScalesOf(Types::LegacyUsbc, testing::List({0x38, 0x20})), PortOnly);
  EXPECT_EQ(ScalesOf(Types::Thunderbolt, 0x38), Both);
}

TEST(IsReportable, IsAVersionOfAScale) {
  for (const PropertyValue version : {PropertyValue(41), PropertyValue(41.05), PropertyValue(41.63),
                                      PropertyValue(41.050000000999994)}) {
    EXPECT_TRUE(IsReportable(version, ThunderboltOnly));
  }
  for (const PropertyValue version :
       {PropertyValue(41.055), PropertyValue(41.64), PropertyValue(41.7), PropertyValue(1e300),
        PropertyValue(std::numeric_limits<double>::infinity())}) {
    EXPECT_FALSE(IsReportable(version, Both));
  }
  EXPECT_TRUE(IsReportable(200, PortOnly));
  EXPECT_TRUE(IsReportable(200.0, PortOnly));
  EXPECT_FALSE(IsReportable(200.5, PortOnly));
  EXPECT_TRUE(IsReportable(200.5, Both));
}

TEST(LowestVersionAfter, IsWhereAWindowEnds) {
  const PropertyValue maximum = 41.051;
  EXPECT_EQ(LowestVersionAfter(ThunderboltOnly, 42, &maximum), PropertyValue(41.060000001));
  EXPECT_EQ(LowestVersionAfter(ThunderboltOnly, 42, nullptr), PropertyValue(42.000000001));
  EXPECT_EQ(LowestVersionAfter(PortOnly, 42, &maximum), PropertyValue(std::uint64_t{42}));
  EXPECT_EQ(LowestVersionAfter(PortOnly, 1e300, nullptr), std::nullopt);
}

TEST(NextThunderboltVersion, IsTheFirstAbove) {
  EXPECT_EQ(NextThunderboltVersion(41.05), PropertyValue(41.050000000999994));
  EXPECT_EQ(NextThunderboltVersion(41.050000000999994), PropertyValue(41.060000001));
  EXPECT_EQ(NextThunderboltVersion(123456789), PropertyValue(123456789.01));
  EXPECT_EQ(NextThunderboltVersion(-5), PropertyValue(1e-9));
  EXPECT_EQ(NextThunderboltVersion(1e9), std::nullopt);
  EXPECT_EQ(NextThunderboltVersion(std::nan("")), std::nullopt);
  EXPECT_EQ(NextThunderboltVersion("41.05"), std::nullopt);
}

}  // namespace
}  // namespace fernwick::lab
