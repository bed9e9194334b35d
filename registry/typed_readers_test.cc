#include "registry/typed_readers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/computer.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::LoggingRegistry;
using testing::Named;
using testing::NamedValue;
using testing::NonNumbers;
using testing::RowName;

constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t AllOnes = std::numeric_limits<std::uint64_t>::max();

template <typename Place>
using Reader = RegistryStatus (*)(Registry&, RegistryEntry, std::string_view, Place&);

/// The status of a read, and the value of the out parameter.
template <typename Place>
using Outcome = std::pair<RegistryStatus, Place>;

template <typename Place>
Outcome<Place> Read(Reader<Place> read, Registry& registry, RegistryEntry entry, Place preset) {
  Place place = preset;
  const RegistryStatus status = read(registry, entry, "Key", place);
  return {status, place};
}

/// Reads "Key" of an entry where it is `value`.
template <typename Place>
Outcome<Place> ReadValue(Reader<Place> read, const PropertyValue& value, Place preset = {}) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Key", value}});
  RecordedRegistry registry(computer.Recorded());
  return Read(read, registry, entry, preset);
}

struct NumberRow {
  PropertyValue value;
  bool asBool;
  std::uint32_t asU32;
  std::uint64_t asU64;
};

class NumericProperty : public ::testing::TestWithParam<Named<NumberRow>> {};

TEST_P(NumericProperty, ReadsAsBool) {
  const auto& row = GetParam().row;
  EXPECT_EQ(ReadValue(ReadBoolProperty, row.value, !row.asBool), Outcome<bool>(0, row.asBool));
}

TEST_P(NumericProperty, ReadsAsU32) {
  const auto& row = GetParam().row;
  EXPECT_EQ(ReadValue(ReadU32Property, row.value, ~row.asU32),
            Outcome<std::uint32_t>(0, row.asU32));
}

TEST_P(NumericProperty, ReadsAsU64) {
  const auto& row = GetParam().row;
  EXPECT_EQ(ReadValue(ReadU64Property, row.value, ~row.asU64),
            Outcome<std::uint64_t>(0, row.asU64));
}

const Named<NumberRow> NumberRows[] = {
    {"BooleanTrue", {true, true, 1, 1}},
    {"BooleanFalse", {false, false, 0, 0}},
    {"Zero", {0, false, 0, 0}},
    {"One", {1, true, 1, 1}},
    {"Two", {2, true, 2, 2}},
    {"MinusOne", {-1, true, 0xFFFFFFFF, AllOnes}},
    {"MinusTwo", {-2, true, 0xFFFFFFFE, 0xFFFFFFFFFFFFFFFE}},
    {"LeastInteger", {std::numeric_limits<std::int64_t>::min(), true, 0, 0x8000000000000000}},
    {"GreatestSignedInteger",
     {std::numeric_limits<std::int64_t>::max(), true, 0xFFFFFFFF, 0x7FFFFFFFFFFFFFFF}},
    {"GreatestInteger", {AllOnes, true, 0xFFFFFFFF, AllOnes}},
    {"Greatest32Bits", {0xFFFFFFFFu, true, 0xFFFFFFFF, 0xFFFFFFFF}},
    {"Bit31", {0x80000000u, true, 0x80000000, 0x80000000}},
    {"Bit32", {0x100000000, true, 0, 0x100000000}},
    {"BitsOnBothSidesOf32", {0x200000005, true, 5, 0x200000005}},
    {"NothingInTheLow32Bits", {0x300000000, true, 0, 0x300000000}},
    {"AllOfTheHigh32Bits", {0xFFFFFFFF00000000, true, 0, 0xFFFFFFFF00000000}},
    {"RealZero", {0.0, false, 0, 0}},
    {"RealMinusZero", {-0.0, false, 0, 0}},
    {"RealBelowOne", {0.9, true, 0, 0}},
    {"RealWhole", {5.0, true, 5, 5}},
    {"RealWithFraction", {5.9, true, 5, 5}},
    {"RealBeyond32Bits", {8589934597.75, true, 5, 0x200000005}},
    {"RealBelowTwoTo64", {18446744073709549568.0, true, 0xFFFFF800, 0xFFFFFFFFFFFFF800}},
    {"RealTwoTo64", {18446744073709551616.0, true, 0xFFFFFFFF, AllOnes}},
    {"RealHuge", {1e300, true, 0xFFFFFFFF, AllOnes}},
    {"RealInfinity", {Infinity, true, 0xFFFFFFFF, AllOnes}},
    {"RealAboveMinusOne", {-0.9, true, 0, 0}},
    {"RealMinusOne", {-1.0, true, 0, 0}},
    {"RealHugeNegative", {-1e300, true, 0, 0}},
    {"RealMinusInfinity", {-Infinity, true, 0, 0}},
    {"RealNan", {Nan, true, 0, 0}},
    {"RealLeastAboveZero", {std::numeric_limits<double>::denorm_min(), true, 0, 0}},
};

INSTANTIATE_TEST_SUITE_P(Readers, NumericProperty, ::testing::ValuesIn(NumberRows), RowName);

class OtherProperty : public ::testing::TestWithParam<NamedValue> {};

TEST_P(OtherProperty, IsNotFoundAndLeavesAPresetZero) {
  EXPECT_EQ(ReadValue(ReadBoolProperty, GetParam().row), Outcome<bool>(RegistryNotFound, false));
  EXPECT_EQ(ReadValue(ReadU32Property, GetParam().row),
            Outcome<std::uint32_t>(RegistryNotFound, 0));
  EXPECT_EQ(ReadValue(ReadU64Property, GetParam().row),
            Outcome<std::uint64_t>(RegistryNotFound, 0));
}

TEST_P(OtherProperty, LeavesTheResultAsItWas) {
  const auto& value = GetParam().row;
  EXPECT_EQ(ReadValue(ReadBoolProperty, value, true), Outcome<bool>(RegistryNotFound, true));
  EXPECT_EQ(ReadValue(ReadU32Property, value, 0xA5A5A5A5u),
            Outcome<std::uint32_t>(RegistryNotFound, 0xA5A5A5A5));
  EXPECT_EQ(ReadValue(ReadU64Property, value, std::uint64_t{0xA5A5A5A5A5A5A5A5}),
            Outcome<std::uint64_t>(RegistryNotFound, 0xA5A5A5A5A5A5A5A5));
}

INSTANTIATE_TEST_SUITE_P(Readers, OtherProperty, ::testing::ValuesIn(NonNumbers()), RowName);

/// Checks that every reader finds nothing under "Key" of `entry` and leaves the out parameter
/// alone.
void ExpectNotFound(const Computer& computer, RegistryEntry entry) {
  RecordedRegistry registry(computer.Recorded());
  EXPECT_EQ(Read(ReadBoolProperty, registry, entry, true), Outcome<bool>(RegistryNotFound, true));
  EXPECT_EQ(Read(ReadU32Property, registry, entry, 7u),
            Outcome<std::uint32_t>(RegistryNotFound, 7));
  EXPECT_EQ(Read(ReadU64Property, registry, entry, std::uint64_t{7}),
            Outcome<std::uint64_t>(RegistryNotFound, 7));
}

TEST(TypedReaders, AbsentPropertyIsNotFound) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Other", 5}});
  ExpectNotFound(computer, entry);
}

TEST(TypedReaders, KeyOfOtherCaseIsNotFound) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"key", 5}, {"KEY", 5}, {"Key ", 5}});
  ExpectNotFound(computer, entry);
}

TEST(TypedReaders, PropertyOfTheEntryAboveOrBelowIsNotFound) {
  Computer computer;
  computer.Set(computer.Services(), "Key", 5);
  const RegistryEntry entry = computer.AddPort("Port0", {});
  computer.AddService(entry, "Below", "", {{"Key", 5}});
  ExpectNotFound(computer, entry);
}

TEST(TypedReaders, HandleZeroIsNotFound) {
  ExpectNotFound(Computer(), 0);
}

TEST(TypedReaders, HandleOfNoEntryIsNotFound) {
  ExpectNotFound(Computer(), 999);
}

TEST(TypedReaders, NotFoundHasItsCode) {
  EXPECT_EQ(RegistryNotFound, -536870160);
}

TEST(TypedReaders, EachReadFetchesThePropertyOnceAndDoesNothingElse) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Key", 5}});
  LoggingRegistry registry(computer.Recorded());
  Read(ReadBoolProperty, registry, entry, false);
  Read(ReadU32Property, registry, entry, 0u);
  Read(ReadU64Property, registry, entry, std::uint64_t{0});
  EXPECT_EQ(registry.Calls(), std::vector<std::string>(3, "GetProperty Port0 Key"));
}

TEST(TypedReaders, AFailedReadFetchesThePropertyOnceAndDoesNothingElse) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Key", "5"}});
  LoggingRegistry registry(computer.Recorded());
  Read(ReadBoolProperty, registry, entry, false);
  Read(ReadU32Property, registry, entry, 0u);
  Read(ReadU64Property, registry, entry, std::uint64_t{0});
  EXPECT_EQ(registry.Calls(), std::vector<std::string>(3, "GetProperty Port0 Key"));
}

struct BcdRow {
  std::uint32_t packed;
  std::uint32_t decoded;
};

class DecodeBcdOf : public ::testing::TestWithParam<Named<BcdRow>> {};

TEST_P(DecodeBcdOf, WeighsEachDigitByItsPosition) {
  EXPECT_EQ(DecodeBcd(GetParam().row.packed), GetParam().row.decoded);
}

const Named<BcdRow> BcdRows[] = {
    {"Zero", {0x0, 0}},
    {"OneDigit", {0x9, 9}},
    {"Ten", {0x10, 10}},
    {"FortyOne", {0x41, 41}},
    {"Hundred", {0x100, 100}},
    {"FourDigits", {0x1234, 1234}},
    {"EightDigits", {0x12345678, 12345678}},
    {"DigitA", {0xA, 10}},
    {"OneA", {0x1A, 20}},
    {"TwoFs", {0xFF, 165}},
    {"AllFs", {0xFFFFFFFF, 166666665}},
    {"Fifteen", {0xF, 15}},
    {"AZero", {0xA0, 100}},
    {"ZeroesBetween", {0x70001, 70001}},
    {"GreatestDecimal", {0x99999999, 99999999}},
    {"TopDigitAlone", {0x80000000, 80000000}},
    {"TopFAlone", {0xF0000000, 150000000}},
};

INSTANTIATE_TEST_SUITE_P(TypedReaders, DecodeBcdOf, ::testing::ValuesIn(BcdRows), RowName);

/// The same by the digits' text.
std::uint32_t PlainlyDecoded(std::uint32_t packed) {
  std::uint32_t sum = 0;
  for (int shift = 28; shift >= 0; shift -= 4) sum = 10 * sum + (packed >> shift & 0xF);
  return sum;
}

TEST(TypedReaders, DecodeBcdAgreesWithThePlainSumOnEveryFourDigits) {
  for (std::uint32_t packed = 0; packed <= 0xFFFF; ++packed) {
    ASSERT_EQ(DecodeBcd(packed), PlainlyDecoded(packed)) << packed;
    ASSERT_EQ(DecodeBcd(packed << 16), PlainlyDecoded(packed << 16)) << packed;
  }
}

}  // namespace
}  // namespace fernwick
