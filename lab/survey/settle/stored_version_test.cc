#include "lab/survey/settle/stored_version.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

TEST(StoredPortVersion, IsTheWholeNumberInPackedBcd) {
  EXPECT_EQ(StoredPortVersion(0), 0u);
  EXPECT_EQ(StoredPortVersion(171), 0x171u);
  EXPECT_EQ(StoredPortVersion(171.9), 0x171u);
  EXPECT_EQ(StoredPortVersion(true), 1u);
  EXPECT_EQ(StoredPortVersion(99999999), 0x99999999u);
}

TEST(StoredPortVersion, HasNoMoreThanEightDigits) {
  EXPECT_EQ(StoredPortVersion(100000000), 0x99999999u);
  EXPECT_EQ(StoredPortVersion(18446744073709551615u), 0x99999999u);
  EXPECT_EQ(StoredPortVersion(Infinity), 0x99999999u);
}

TEST(StoredPortVersion, IsEmptyBelowZeroAndForNan) {
  EXPECT_EQ(StoredPortVersion(-1), std::nullopt);
  EXPECT_EQ(StoredPortVersion(-0.5), std::nullopt);
  EXPECT_EQ(StoredPortVersion(std::nan("")), std::nullopt);
}

TEST(StoredThunderboltVersion, HasHundredths) {
  EXPECT_EQ(StoredThunderboltVersion(41), (ThunderboltVersionWords{0x41, 0}));
  EXPECT_EQ(StoredThunderboltVersion(41.05), (ThunderboltVersionWords{0x41, 5}));
  EXPECT_EQ(StoredThunderboltVersion(0.63), (ThunderboltVersionWords{0, 63}));
  EXPECT_EQ(StoredThunderboltVersion(41.059), (ThunderboltVersionWords{0x41, 5}));
  EXPECT_EQ(StoredThunderboltVersion(41.050000001), (ThunderboltVersionWords{0x41, 5}));
}

TEST(StoredThunderboltVersion, HasNoMoreThan63Hundredths) {
  EXPECT_EQ(StoredThunderboltVersion(41.64), (ThunderboltVersionWords{0x41, 63}));
  EXPECT_EQ(StoredThunderboltVersion(41.999), (ThunderboltVersionWords{0x41, 63}));
}

TEST(StoredThunderboltVersion, HasNoMoreThanEightDigits) {
  for (const double offered : {99999999.63, 99999999.99, 1e9, 1e300, Infinity}) {
    EXPECT_EQ(StoredThunderboltVersion(offered), (ThunderboltVersionWords{0x99999999, 63}));
  }
  EXPECT_EQ(StoredThunderboltVersion(18446744073709551615u),
            (ThunderboltVersionWords{0x99999999, 63}));
}

TEST(StoredThunderboltVersion, IsEmptyBelowZeroAndForNan) {
  EXPECT_EQ(StoredThunderboltVersion(-1), std::nullopt);
  EXPECT_EQ(StoredThunderboltVersion(std::nan("")), std::nullopt);
}

// What is stored is reported as no more than was offered, apart from the 1e-9 that a report adds,
// and one hundredth more would be more.
TEST(StoredThunderboltVersion, IsTheGreatestOfAllHundredths) {
  for (unsigned major = 0; major < 100; ++major) {
    for (unsigned minor = 0; minor < 64; ++minor) {
      const double version = (major * 100 + minor) / 100.0;
      const auto packed = major / 10 * 16 + major % 10;
      EXPECT_EQ(StoredThunderboltVersion(version), (ThunderboltVersionWords{packed, minor}));
      EXPECT_EQ(ThunderboltFirmwareVersion(packed, minor), version + 1e-9);
      if (version == 0) continue;
      const auto less = StoredThunderboltVersion(std::nextafter(version, 0));
      EXPECT_NE(less, (ThunderboltVersionWords{packed, minor})) << version;
    }
  }
}

}  // namespace
}  // namespace fernwick::lab
