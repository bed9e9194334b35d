#include "personality/run_trace.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "personality/matcher.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/logging_registry.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"
#include "value/xml/writer.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::Dict;
using testing::List;
using testing::With;

using enum PairOutcome;

// What a matching returns and does.
struct Answer {
  std::vector<MatchRecord> matches;
  std::optional<PropertyList> configuration;  // which the matches view
  std::optional<Fault> fault;
  std::string standardError;
  std::vector<std::string> calls;

  friend bool operator==(const Answer& a, const Answer& b) {
    const auto valueOf = [](const Answer& answer) {
      return answer.configuration ? std::optional(answer.configuration->value) : std::nullopt;
    };
    return a.matches == b.matches && valueOf(a) == valueOf(b) && a.fault == b.fault &&
           a.standardError == b.standardError && a.calls == b.calls;
  }
};

Answer Match(const Computer& computer, const std::string& directory, RunTrace* trace) {
  testing::LoggingRegistry registry(computer.Recorded());
  testing::TestConsole console;
  auto matching = MatchPersonalities({registry, console, false, trace}, "Zed-42", 3, directory);
  if (!matching) return {{}, {}, matching.Error(), console.Error(), registry.Calls()};
  return {std::move(matching->matches),
          std::move(matching->configuration),
          {},
          console.Error(),
          registry.Calls()};
}

// The trace of a matching. With it the matches, all that is written and all that is asked of the
// registry are the same as without.
RunTrace Traced(const Computer& computer, const testing::TemporaryDirectory& payload) {
  RunTrace trace;
  const auto directory = payload.Path() + "/";
  EXPECT_TRUE(Match(computer, directory, &trace) == Match(computer, directory, nullptr));
  return trace;
}

RunTrace Traced(const Computer& computer, const PropertyValue& configuration) {
  const testing::TemporaryDirectory payload;
  payload.Write("Zed-42/Config.plist", WriteXmlPropertyList(configuration));
  return Traced(computer, payload);
}

// Two ports with addresses 0 and 1, both at version 171.
Computer TwoPorts() {
  Computer computer;
  for (const int address : {0, 1}) {
    computer.AddPort("hpm", {{"Vendor ID", 1},
                             {"Device ID", 2},
                             {"Revision ID", 3},
                             {"Address", address},
                             {"Version", 0x171}});
  }
  return computer;
}

const Record Update = {{"Version", 172},
                       {"Port Silicon Vendor ID", 1},
                       {"Port Silicon Device ID", 2},
                       {"Port Silicon Revision", 3}};

// With a diagnostic when it is tested.
const Record TooOld = With(Update, {{"Existing Max Version", 170}});

using Outcomes = std::vector<std::vector<PairOutcome>>;

// The outcomes of each record.
Outcomes OutcomesOf(const KeyTrace& key) {
  Outcomes outcomes(key.matched.size());
  for (std::size_t record = 0; record < outcomes.size(); ++record) {
    for (std::size_t i = 0; i < key.isPersonality.size(); ++i) {
      outcomes[record].push_back(key.OutcomeOf(record, i));
    }
  }
  EXPECT_EQ(key.HasPairs(), !outcomes.empty());
  return outcomes;
}

TEST(RunTrace, HasTheOutcomeOfEachPair) {
  const auto forPort1 = With(Update, {{"Port Address", 1}});
  const auto computer = TwoPorts();
  const auto trace =
      Traced(computer, Dict({{"USBC", List({5, Dict(forPort1), Dict(Update), Dict(TooOld)})}}));
  ASSERT_EQ(trace.keys.size(), 1u);
  EXPECT_EQ(OutcomesOf(trace.keys.front()),
            (Outcomes{{NotAPersonality, Rejected, Matched, NotReached},
                      {NotAPersonality, Matched, NotReached, NotReached}}));
}

TEST(RunTrace, HasTheOutcomesOfARejectionThatWritesADiagnostic) {
  const auto computer = TwoPorts();
  const auto trace = Traced(computer, Dict({{"USBC", List({Dict(TooOld)})}}));
  EXPECT_EQ(OutcomesOf(trace.keys.front()), (Outcomes{{Rejected}, {Rejected}}));
}

TEST(RunTrace, HasTheOutcomeOfTheSinglePersonalityOnEveryPort) {
  const auto update = With(Update, {{"Port Address", 1}});
  const auto computer = TwoPorts();
  const auto trace = Traced(computer, Dict({{"LegacyUSBC", Dict(update)}}));
  ASSERT_EQ(trace.keys.size(), 1u);
  EXPECT_EQ(OutcomesOf(trace.keys.front()), (Outcomes{{Rejected}, {Matched}}));
}

TEST(RunTrace, HasTheKeysInTheirOrderWithTheirInventories) {
  auto computer = TwoPorts();
  const auto ridge =
      computer.AddThunderbolt("ridge", {{"Depth", 0}, {"Route String", 0}, {"UID", 7}});
  const auto trace = Traced(computer, Dict({{"Note", "x"},
                                            {"LegacyThunderbolt", Array()},
                                            {"USBC", Dict(Update)},
                                            {"LegacyUSBC", List({Dict(Update)})},
                                            {"Thunderbolt", 5}}));
  std::vector<std::string> keys;
  for (const auto& key : trace.keys) {
    keys.push_back(key.key);
    const bool isThunderbolt = key.key == "LegacyThunderbolt";
    EXPECT_EQ(key.inventory.records.size(), isThunderbolt       ? 1u
                                            : key.key == "Note" ? 0u
                                                                : 2u)
        << key.key;
    EXPECT_EQ(key.inventory.sources.size(), key.inventory.records.size()) << key.key;
    // An array without elements has the right shape; the values of the others have not, or their
    // key names no type.
    EXPECT_EQ(OutcomesOf(key), Outcomes(isThunderbolt ? 1 : 0)) << key.key;
    if (!isThunderbolt) continue;
    EXPECT_EQ(key.inventory.sources.front().thunderbolt, ridge);
  }
  EXPECT_EQ(keys, (std::vector<std::string>{"Note", "LegacyThunderbolt", "USBC", "LegacyUSBC",
                                            "Thunderbolt"}));
}

TEST(RunTrace, HasTheRecordsOfTheControllers) {
  const auto computer = TwoPorts();
  const auto trace = Traced(computer, Dict({{"USBC", Array()}}));
  EXPECT_EQ(trace.keys.front().inventory.records.at(1), (HardwareRecord{
                                                            {"Port Silicon Vendor ID", 1},
                                                            {"Port Silicon Device ID", 2},
                                                            {"Port Silicon Revision", 3},
                                                            {"Port Address", 1},
                                                            {"Version", 171},
                                                        }));
}

TEST(RunTrace, HasTheControllersThatAreSkipped) {
  Computer computer;
  const auto port = computer.AddPort("hpm", {{"Route String", 1}});
  const auto trace = Traced(computer, Dict({{"USBC", List({Dict(Update)})}}));
  EXPECT_EQ(trace.keys.front().inventory.skipped,
            (std::vector<SkippedController>{{port, SkipReason::RouteString}}));
  EXPECT_EQ(OutcomesOf(trace.keys.front()), Outcomes());
}

TEST(RunTrace, IsEmptyWithoutADictionaryForAConfiguration) {
  const auto computer = TwoPorts();
  EXPECT_TRUE(Traced(computer, Dictionary()).keys.empty());
  EXPECT_TRUE(Traced(computer, List({5})).keys.empty());
  EXPECT_TRUE(Traced(computer, testing::TemporaryDirectory()).keys.empty());
}

TEST(RunTrace, OfNoControllersHasNoOutcomes) {
  const Computer computer;
  const auto trace = Traced(computer, Dict({{"USBC", List({Dict(Update)})}}));
  ASSERT_EQ(trace.keys.size(), 1u);
  EXPECT_EQ(trace.keys.front().key, "USBC");
  EXPECT_EQ(trace.keys.front().inventory, HardwareInventory());
  EXPECT_EQ(OutcomesOf(trace.keys.front()), Outcomes());
}

// The configuration is gone by then, the trace is not.
TEST(RunTrace, HasTheKeysBeforeAFault) {
  auto computer = TwoPorts();
  computer.AddThunderbolt("ridge", {{"Depth", 0}, {"Route String", 0}});
  const auto trace =
      Traced(computer, Dict({{"USBC", List({Dict(Update)})}, {"LegacyThunderbolt", Array()}}));
  ASSERT_EQ(trace.keys.size(), 1u);
  EXPECT_EQ(trace.keys.front().key, "USBC");
  EXPECT_EQ(OutcomesOf(trace.keys.front()), (Outcomes{{Matched}, {Matched}}));
}

}  // namespace
}  // namespace fernwick
