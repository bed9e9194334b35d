#include "registry/inventory.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "testing/call_lists.h"
#include "testing/computer.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::CallList;
using testing::Computer;
using testing::List;
using testing::LoggingRegistry;
using testing::Named;
using testing::NamedValue;
using testing::NonNumbers;
using testing::RowName;

constexpr std::uint64_t AllOnes = std::numeric_limits<std::uint64_t>::max();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

/// The record after "One" was filled from "First" and then "Two" from "Second".
HardwareRecord Filled(const Record& properties, HardwareRecord record = {}) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", properties);
  RecordedRegistry registry(computer.Recorded());
  FillKey(registry, entry, "One", {"First", Conversion::Signed32}, record);
  FillKey(registry, entry, "Two", {"Second", Conversion::Signed32}, record);
  return record;
}

TEST(FillKey, WritesAKeyWhereThePropertyIs) {
  EXPECT_EQ(Filled({{"Second", 2}, {"First", 1}, {"Third", 3}}), (Record{{"One", 1}, {"Two", 2}}));
}

TEST(FillKey, LeavesOutWhatIsAbsent) {
  EXPECT_EQ(Filled({{"Second", 2}}), (Record{{"Two", 2}}));
}

TEST(FillKey, LeavesTheRecordAsItIsWhereNothingReads) {
  EXPECT_EQ(Filled({{"First", "1"}}, {{"Two", "b"}, {"One", "a"}}),
            (Record{{"Two", "b"}, {"One", "a"}}));
}

TEST(FillKey, ReplacesAValueAtItsLocation) {
  EXPECT_EQ(Filled({{"First", 1}, {"Second", 2}}, {{"Two", "b"}, {"Other", "c"}}),
            (Record{{"Two", 2}, {"Other", "c"}, {"One", 1}}));
}

/// What is written for a property of that value; empty: nothing.
std::optional<PropertyValue> Converted(PropertyValue property, Conversion conversion) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Property", property}});
  LoggingRegistry registry(computer.Recorded());
  HardwareRecord record;
  FillKey(registry, entry, "Key", {"Property", conversion}, record);
  EXPECT_EQ(registry.Calls(), CallList{"GetProperty Port0 Property"});
  const auto* written = record.Find("Key");
  EXPECT_EQ(record.Size(), written == nullptr ? 0u : 1u);
  return written == nullptr ? std::nullopt : std::optional(*written);
}

struct WrittenRow {
  PropertyValue property;
  std::int32_t signed32;
  std::int32_t bcd;
  std::int32_t lowNibble;
  bool nonZero;
};

class FillKeyFrom : public ::testing::TestWithParam<Named<WrittenRow>> {};

TEST_P(FillKeyFrom, ANumberByEachConversion) {
  const auto& row = GetParam().row;
  EXPECT_EQ(Converted(row.property, Conversion::Signed32), PropertyValue(row.signed32));
  EXPECT_EQ(Converted(row.property, Conversion::Bcd), PropertyValue(row.bcd));
  EXPECT_EQ(Converted(row.property, Conversion::LowNibble), PropertyValue(row.lowNibble));
  EXPECT_EQ(Converted(row.property, Conversion::NonZero), PropertyValue(row.nonZero));
  EXPECT_EQ(Converted(row.property, Conversion::Text), std::nullopt);
}

constexpr std::int32_t MaxBcd = 166666665;

const Named<WrittenRow> WrittenRows[] = {
    {"Zero", {0, 0, 0, 0, false}},
    {"Bcd", {0x171, 369, 171, 1, true}},
    {"GreatestSigned", {0x7FFFFFFF, 2147483647, 86666665, 15, true}},
    {"Bit31", {0x80000000u, -2147483647 - 1, 80000000, 0, true}},
    {"Bit31And1", {0x80000001u, -2147483647, 80000001, 1, true}},
    {"AllBits", {0xFFFFFFFFu, -1, MaxBcd, 15, true}},
    {"MinusOne", {-1, -1, MaxBcd, 15, true}},
    {"Beyond32Bits", {0x200000005, 5, 5, 5, true}},
    {"NothingInTheLow32Bits", {0x200000000, 0, 0, 0, true}},
    {"GreatestInteger", {AllOnes, -1, MaxBcd, 15, true}},
    {"BooleanTrue", {true, 1, 1, 1, true}},
    {"BooleanFalse", {false, 0, 0, 0, false}},
    {"Real", {21.9, 21, 15, 5, true}},
    {"NegativeReal", {-5.9, 0, 0, 0, true}},
    {"HugeReal", {1e300, -1, MaxBcd, 15, true}},
    {"Nan", {Nan, 0, 0, 0, true}},
};

INSTANTIATE_TEST_SUITE_P(Inventory, FillKeyFrom, ::testing::ValuesIn(WrittenRows), RowName);

class FillKeyOf : public ::testing::TestWithParam<NamedValue> {};

TEST_P(FillKeyOf, AKindOtherThanANumberLeavesTheKeyOut) {
  EXPECT_EQ(Filled({{"First", GetParam().row}, {"Second", 2}}), (Record{{"Two", 2}}));
  for (const auto conversion :
       {Conversion::Signed32, Conversion::Bcd, Conversion::LowNibble, Conversion::NonZero}) {
    EXPECT_EQ(Converted(GetParam().row, conversion), std::nullopt);
  }
}

INSTANTIATE_TEST_SUITE_P(Inventory, FillKeyOf, ::testing::ValuesIn(NonNumbers()), RowName);

TEST(FillKey, ReadsAndWritesNothingByAConversionThatIsNotOfOnePropertyAlone) {
  for (const auto conversion : {Conversion::None, Conversion::AsIs, Conversion::ThunderboltVersion,
                                Conversion::EngineeringBits}) {
    Computer computer;
    const RegistryEntry entry = computer.AddPort("Port0", {{"Property", 5}});
    LoggingRegistry registry(computer.Recorded());
    HardwareRecord record = {{"Key", "old"}};
    FillKey(registry, entry, "Key", {"Property", conversion}, record);
    EXPECT_EQ(registry.Calls(), CallList());
    EXPECT_EQ(record, (Record{{"Key", "old"}}));
  }
}

TEST(FillKey, WritesATextAsItIs) {
  EXPECT_EQ(Converted("Grat", Conversion::Text), PropertyValue("Grat"));
  EXPECT_EQ(Converted("", Conversion::Text), PropertyValue(""));
}

TEST(FillKey, WritesNoTextOfAnotherKind) {
  for (const PropertyValue value : {PropertyValue(Bytes("Grat")), PropertyValue(List({"Grat"})),
                                    PropertyValue(Dictionary()), PropertyValue(Date{5})}) {
    EXPECT_EQ(Converted(value, Conversion::Text), std::nullopt);
  }
}

/// The calls of a walk over class "Fan" that looks at "Speed" of every entry.
CallList WalkCalls(LoggingRegistry& registry) {
  const auto fault =
      ForEachService(registry, "Fan", [&](RegistryEntry entry) -> std::optional<Fault> {
        registry.GetProperty(entry, "Speed");
        return std::nullopt;
      });
  EXPECT_EQ(fault, std::nullopt);
  return registry.Calls();
}

Computer ComputerWithTwoFans() {
  Computer computer;
  computer.AddService(computer.Services(), "Fan1", "Fan", {});
  computer.AddService(computer.Services(), "Lamp", "Lamp", {});
  computer.AddService(computer.Services(), "Fan0", "Fan", {});
  return computer;
}

TEST(ForEachService, VisitsTheEntriesAndReleasesOnlyTheIterator) {
  const Computer computer = ComputerWithTwoFans();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ResetIterator iterator 1",
                                           "NextEntry iterator 1", "GetProperty Fan1 Speed",
                                           "NextEntry iterator 1", "GetProperty Fan0 Speed",
                                           "NextEntry iterator 1", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, WithoutEntriesTheIteratorIsStillRewoundAndReleased) {
  const Computer computer;
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ResetIterator iterator 1",
                                           "NextEntry iterator 1", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, AFaultEndsTheWalkAndStillReleasesTheIterator) {
  const Computer computer = ComputerWithTwoFans();
  LoggingRegistry registry(computer.Recorded());
  const auto fault =
      ForEachService(registry, "Fan", [&](RegistryEntry entry) -> std::optional<Fault> {
        registry.GetProperty(entry, "Speed");
        return Fault::MissingUid;
      });
  EXPECT_EQ(fault, Fault::MissingUid);
  EXPECT_EQ(registry.Calls(), (CallList{"MatchServicesByClass Fan", "ResetIterator iterator 1",
                                        "NextEntry iterator 1", "GetProperty Fan1 Speed",
                                        "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, AFailureWithIteratorReleasesItUnused) {
  const Computer computer = ComputerWithTwoFans();
  LoggingRegistry registry(computer.Recorded());
  registry.FailMatching(5, true);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, ANegativeStatusIsAFailure) {
  const Computer computer = ComputerWithTwoFans();
  LoggingRegistry registry(computer.Recorded());
  registry.FailMatching(RegistryNotFound, true);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, AFailureWithoutIteratorReleasesNothing) {
  const Computer computer = ComputerWithTwoFans();
  LoggingRegistry registry(computer.Recorded());
  registry.FailMatching(5, false);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan"}));
}

TEST(ForEachService, SuccessWithoutIteratorReleasesNothing) {
  const Computer computer = ComputerWithTwoFans();
  LoggingRegistry registry(computer.Recorded());
  registry.FailMatching(RegistrySuccess, false);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan"}));
}

}  // namespace
}  // namespace fernwick
