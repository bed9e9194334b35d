#include "registry/inventory.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "testing/call_lists.h"
#include "testing/computer.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::CallList;
using testing::Computer;
using testing::LoggingRegistry;
using testing::Named;
using testing::NamedValue;
using testing::NonNumbers;
using testing::RowName;

HardwareRecord Filled(const Dictionary& properties, HardwareRecord record = {}) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", properties);
  RecordedRegistry registry(computer.Recorded());
  FillIntegers(registry, entry, record, {{"First", "One"}, {"Second", "Two"}});
  return record;
}

TEST(FillIntegers, WritesTheTargetsInTheirOwnOrder) {
  EXPECT_EQ(Filled({{"Second", 2}, {"First", 1}, {"Third", 3}}),
            (Dictionary{{"One", 1}, {"Two", 2}}));
}

TEST(FillIntegers, LeavesOutWhatIsAbsent) {
  EXPECT_EQ(Filled({{"Second", 2}}), (Dictionary{{"Two", 2}}));
}

TEST(FillIntegers, LeavesWhatTheRecordHoldsWhereNothingReads) {
  EXPECT_EQ(Filled({{"First", "1"}}, {{"Two", "b"}, {"One", "a"}}),
            (Dictionary{{"Two", "b"}, {"One", "a"}}));
}

TEST(FillIntegers, ReplacesWhatTheRecordHoldsAtItsPlace) {
  EXPECT_EQ(Filled({{"First", 1}, {"Second", 2}}, {{"Two", "b"}, {"Other", "c"}}),
            (Dictionary{{"Two", 2}, {"Other", "c"}, {"One", 1}}));
}

struct WrittenRow {
  PropertyValue property;
  std::int32_t written;
};

class FillIntegersFrom : public ::testing::TestWithParam<Named<WrittenRow>> {};

TEST_P(FillIntegersFrom, TheLow32BitsAsASignedInteger) {
  EXPECT_EQ(Filled({{"First", GetParam().row.property}}),
            (Dictionary{{"One", GetParam().row.written}}));
}

const Named<WrittenRow> WrittenRows[] = {
    {"Zero", {0, 0}},
    {"GreatestSigned", {0x7FFFFFFF, 2147483647}},
    {"Bit31", {0x80000000u, -2147483647 - 1}},
    {"Bit31And1", {0x80000001u, -2147483647}},
    {"AllBits", {0xFFFFFFFFu, -1}},
    {"MinusOne", {-1, -1}},
    {"Beyond32Bits", {0x200000005, 5}},
    {"GreatestInteger", {std::numeric_limits<std::uint64_t>::max(), -1}},
    {"BooleanTrue", {true, 1}},
    {"BooleanFalse", {false, 0}},
    {"Real", {5.9, 5}},
    {"NegativeReal", {-5.9, 0}},
    {"HugeReal", {1e300, -1}},
    {"Nan", {std::numeric_limits<double>::quiet_NaN(), 0}},
};

INSTANTIATE_TEST_SUITE_P(Inventory, FillIntegersFrom, ::testing::ValuesIn(WrittenRows), RowName);

class FillIntegersOf : public ::testing::TestWithParam<NamedValue> {};

TEST_P(FillIntegersOf, AKindOtherThanANumberLeavesTheKeyOut) {
  EXPECT_EQ(Filled({{"First", GetParam().row}, {"Second", 2}}), (Dictionary{{"Two", 2}}));
}

INSTANTIATE_TEST_SUITE_P(Inventory, FillIntegersOf, ::testing::ValuesIn(NonNumbers()), RowName);

/// The calls of a walk over class "Fan" that looks at "Speed" of every entry.
CallList WalkCalls(LoggingRegistry& registry) {
  ForEachService(registry, "Fan",
                 [&](RegistryEntry entry) { registry.GetProperty(entry, "Speed"); });
  return registry.Calls();
}

Computer ComputerWithTwoFans() {
  Computer computer;
  computer.AddService(computer.Services(), "Fan1", "Fan", {});
  computer.AddService(computer.Services(), "Lamp", "Lamp", {});
  computer.AddService(computer.Services(), "Fan0", "Fan", {});
  return computer;
}

TEST(ForEachService, VisitsTheEntriesAndReleasesTheIteratorAlone) {
  LoggingRegistry registry(ComputerWithTwoFans().Recorded());
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ResetIterator iterator 1",
                                           "NextEntry iterator 1", "GetProperty Fan1 Speed",
                                           "NextEntry iterator 1", "GetProperty Fan0 Speed",
                                           "NextEntry iterator 1", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, WithoutEntriesTheIteratorIsStillRewoundAndReleased) {
  LoggingRegistry registry(Computer().Recorded());
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ResetIterator iterator 1",
                                           "NextEntry iterator 1", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, AFailureWithIteratorReleasesItUnused) {
  LoggingRegistry registry(ComputerWithTwoFans().Recorded());
  registry.FailMatching(5, true);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, ANegativeStatusIsAFailure) {
  LoggingRegistry registry(ComputerWithTwoFans().Recorded());
  registry.FailMatching(RegistryNotFound, true);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan", "ReleaseEntry iterator 1"}));
}

TEST(ForEachService, AFailureWithoutIteratorReleasesNothing) {
  LoggingRegistry registry(ComputerWithTwoFans().Recorded());
  registry.FailMatching(5, false);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan"}));
}

TEST(ForEachService, SuccessWithoutIteratorReleasesNothing) {
  LoggingRegistry registry(ComputerWithTwoFans().Recorded());
  registry.FailMatching(RegistrySuccess, false);
  EXPECT_EQ(WalkCalls(registry), (CallList{"MatchServicesByClass Fan"}));
}

TEST(NonEmpty, IsNoneForAnEmptyList) {
  EXPECT_EQ(NonEmpty({}), HardwareInventory());
}

TEST(NonEmpty, KeepsTheRecordsInTheirOrder) {
  const std::vector<HardwareRecord> records{{{"RID", 2}}, {}, {{"RID", 1}}};
  EXPECT_EQ(NonEmpty(records), HardwareInventory(records));
}

}  // namespace
}  // namespace fernwick
