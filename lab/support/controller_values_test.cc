#include "lab/support/controller_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "personality/requirements.h"
#include "registry/typed_readers.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

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
  EXPECT_TRUE(IsReportable(99999999, PortOnly));
  EXPECT_TRUE(IsReportable(99999999.63, ThunderboltOnly));
  EXPECT_FALSE(IsReportable(100000000, Both));
}

TEST(LowestVersionAfter, IsWhereAWindowEnds) {
  const PropertyValue maximum = 41.051;
  EXPECT_EQ(LowestVersionAfter(ThunderboltOnly, 42, &maximum), PropertyValue(41.060000001));
  EXPECT_EQ(LowestVersionAfter(ThunderboltOnly, 42, nullptr), PropertyValue(42.000000001));
  EXPECT_EQ(LowestVersionAfter(PortOnly, 42, &maximum), PropertyValue(std::uint64_t{42}));
  EXPECT_EQ(LowestVersionAfter(PortOnly, 1e300, nullptr), std::nullopt);
}

TEST(VersionJustAbove, IsOneThatTheMaximumExcludesByTheAddedFractionAlone) {
  EXPECT_EQ(VersionJustAbove(41.05), PropertyValue(41.050000000999994));
  EXPECT_EQ(VersionJustAbove(123456789), std::nullopt);  // to which nothing is added
  EXPECT_EQ(VersionJustAbove(41.050000000999994), std::nullopt);
  EXPECT_EQ(VersionJustAbove(41.04), PropertyValue(41.04 + 1e-9));
  EXPECT_EQ(VersionJustAbove(41.045), std::nullopt);
  EXPECT_EQ(VersionJustAbove(-5), std::nullopt);
  EXPECT_EQ(VersionJustAbove(1e9), std::nullopt);
  EXPECT_EQ(VersionJustAbove(std::nan("")), std::nullopt);
  EXPECT_EQ(VersionJustAbove("41.05"), std::nullopt);
}

TEST(IsWhole, IsOfEveryKindOfNumber) {
  for (const PropertyValue whole : {PropertyValue(41), PropertyValue(41.0), PropertyValue(true)}) {
    EXPECT_TRUE(IsWhole(whole));
  }
  EXPECT_FALSE(IsWhole(41.05));
}

TEST(VersionWindow, IsAboveOrAtTheMinimumBelowTheOfferedAndUpToTheMaximum) {
  const PropertyValue offered = 41.1;
  const PropertyValue minimum = 41.02;
  const PropertyValue maximum = 41.06;
  const VersionWindow window = {&offered, &minimum, &maximum};
  EXPECT_TRUE(window.Contains(41.02) && window.Contains(41.06));
  EXPECT_FALSE(window.Contains(41.01) || window.Contains(41.07));
  EXPECT_TRUE((VersionWindow{&offered, nullptr, nullptr}.Contains(-1)));
  EXPECT_FALSE((VersionWindow{&offered, nullptr, nullptr}.Contains(41.1)));
  EXPECT_TRUE(window.ContainsAny(ThunderboltOnly));
  EXPECT_FALSE(window.ContainsAny(PortOnly));
  EXPECT_FALSE((VersionWindow{&minimum, &offered, nullptr}.ContainsAny(Both)));
}

TEST(VersionWindow, IntersectionHasTheStricterLimits) {
  const PropertyValue low = 20;
  const PropertyValue middle = 30;
  const PropertyValue high = 40;
  const auto both = Intersection({&middle, &low, nullptr}, {&high, nullptr, &middle});
  EXPECT_EQ(both.offered, &middle);
  EXPECT_EQ(both.minimum, &low);
  EXPECT_EQ(both.maximum, &middle);
  const auto swapped = Intersection({&high, &middle, &low}, {&middle, &low, &high});
  EXPECT_EQ(swapped.offered, &middle);
  EXPECT_EQ(swapped.minimum, &middle);
  EXPECT_EQ(swapped.maximum, &low);
}

TEST(EncodeBcd, IsDecodedToTheSameNumber) {
  for (const std::uint32_t number :
       {0u, 9u, 10u, 41u, 1234u, 99'999'999u, 100'000'000u, 123'456'789u, 166'666'665u}) {
    EXPECT_EQ(DecodeBcd(EncodeBcd(number)), number);
  }
  EXPECT_EQ(EncodeBcd(1234), 0x1234u);
}

}  // namespace
}  // namespace fernwick::lab
