#include "lab/survey/coverage/board_coverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "lab/explain/explanation.h"
#include "testing/computer.h"
#include "testing/coverage_counting.h"
#include "testing/inputs/random_pairs.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::Computer;
using testing::Dict;
using testing::List;

constexpr bool IsSlowCount = testing::UnderAddressSanitizer || testing::CountingCoverage;
constexpr int CountedPairs = IsSlowCount ? 500 : 2000;

using Counts = std::vector<std::size_t>;

// One payload, with a configuration that may change.
class Bench {
 public:
  explicit Bench(const PropertyValue& configuration) { Write(configuration); }

  void Write(const PropertyValue& configuration) {
    payload_.Write("Fernwick/Zed-42/Config.plist", WriteXmlPropertyList(configuration));
  }

  const std::string& Path() const { return payload_.Path(); }

  BoardCoverage Of(const Computer& computer, bool bypassVersion = false) const {
    const auto options = ToolOptions(payload_.Path(), bypassVersion);
    return CoverageOf(RunTool(computer.Recorded(), options));
  }

 private:
  testing::TemporaryDirectory payload_;
};

Computer Ports(std::initializer_list<std::pair<int, int>> versionsAndAddresses) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  for (const auto& [version, address] : versionsAndAddresses) {
    computer.AddPort("hpm", {{"Version", version}, {"Address", address}});
  }
  return computer;
}

TEST(BoardCoverage, CountsPairsMatchesAndElements) {
  const Bench bench(
      Dict({{"LegacyUSBC",
             Dict({{"Version", 9}, {"Firmware", "f"}, {"Port Address", List({1, 2, 1, "2"})}})}}));
  const auto coverage = bench.Of(Ports({{1, 1}, {2, 1}, {3, 4}, {9, 2}, {9, 2}}));
  ASSERT_EQ(coverage.keys.size(), 1u);
  const auto& key = coverage.keys[0];
  EXPECT_EQ(coverage.runs, 1u);
  EXPECT_EQ(key.tested, Counts{5});
  EXPECT_EQ(key.matched, Counts{2});
  // A value that equals an element is not compared with the next ones.
  EXPECT_EQ(key.elements.tested, (Counts{3, 1, 1, 1}));
  EXPECT_EQ(key.elements.matched, (Counts{2, 0, 0, 0}));
  EXPECT_EQ(key.elements.rejected[5], (Counts{1, 1, 1, 1}));
  EXPECT_EQ(key.elements.rejected[0], Counts{});
  EXPECT_EQ(key.rejected[0], Counts{2});  // not newer
  EXPECT_EQ(key.rejected[5], Counts{1});  // another address
  EXPECT_EQ(key.rejected[1], Counts{});
}

TEST(BoardCoverage, CountsElementsOfTheListsThatAreReached) {
  const Bench bench(Dict({{"USBC", List({Dict({{"Version", 9},
                                               {"RID", List({0, 1})},
                                               {"Port Silicon Vendor ID", List({1, 2})},
                                               {"Port Silicon Device ID", 1},
                                               {"Port OTP Revision", List({1})},
                                               {"Port Silicon Revision", Array()}})})}}));
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  const auto add = [&](int version, int rid, int vendor, int device) {
    computer.AddPort("hpm", {{"Version", version},
                             {"RID", rid},
                             {"Vendor ID", vendor},
                             {"Device ID", device},
                             {"Revision ID", 3}});
  };
  add(9, 0, 1, 1);                            // rejected before any list
  add(1, 2, 1, 1);                            // by the first list
  add(1, 1, 3, 1);                            // by the next one
  add(1, 0, 2, 5);                            // after it
  add(1, 0, 1, 1);                            // by the list without elements
  computer.AddPort("hpm", {{"Version", 1}});  // has no value for the first list
  const auto elements = bench.Of(computer).keys[0].elements;
  const auto rejected = [&](std::string_view key) {
    const auto table = RequirementsOf(Types::Usbc);
    const auto found = std::ranges::find(table, key, &Requirement::key);
    return elements.rejected[static_cast<std::size_t>(found - table.begin())];
  };
  EXPECT_EQ(elements.tested, (Counts{4, 2, 3, 2, 0}));
  EXPECT_EQ(rejected("RID"), (Counts{2, 1, 0, 0, 0}));
  EXPECT_EQ(rejected("Port Silicon Vendor ID"), (Counts{0, 1, 2, 1, 0}));
  EXPECT_EQ(rejected("Port Silicon Device ID"), (Counts{1, 0, 0, 1, 0}));
  EXPECT_EQ(rejected("Port Silicon Revision"), (Counts{1, 0, 1, 0, 0}));
}

TEST(BoardCoverage, CountsNoPairAfterAMatch) {
  const auto any = Dict({{"Version", 9},
                         {"Firmware", "f"},
                         {"Port Silicon Vendor ID", 1},
                         {"Port Silicon Device ID", 1},
                         {"Port Silicon Revision", 1}});
  const Bench bench(Dict({{"USBC", List({"x", any, any})}}));
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort("hpm", {{"Version", 1}, {"Vendor ID", 1}, {"Device ID", 1}, {"Revision ID", 1}});
  computer.AddPort("hpm", {{"Version", 1}});
  const auto coverage = bench.Of(computer);
  EXPECT_EQ(coverage.keys[0].tested, (Counts{0, 2, 1}));
  EXPECT_EQ(coverage.keys[0].matched, (Counts{0, 1, 0}));
  const auto counts = CountsOf(coverage);
  EXPECT_EQ(counts.personalities, 2u);
  EXPECT_EQ(counts.testedPersonalities, 2u);
  EXPECT_EQ(counts.matchedPersonalities, 1u);
}

TEST(BoardCoverage, AddsRuns) {
  const Bench bench(Dict({{"LegacyUSBC", Dict({{"Version", 9}, {"Port Address", List({1, 2})}})}}));
  const auto first = bench.Of(Ports({{1, 1}, {9, 1}}));
  const auto second = bench.Of(Ports({{1, 2}, {1, 3}}));
  auto sum = first;
  EXPECT_TRUE(sum.Add(second));
  auto other = second;
  EXPECT_TRUE(other.Add(first));
  EXPECT_EQ(sum, other);
  EXPECT_EQ(sum.runs, 2u);
  EXPECT_EQ(sum.keys[0].tested, Counts{4});
  EXPECT_EQ(sum.keys[0].elements.tested, (Counts{3, 2}));
  EXPECT_EQ(sum.keys[0].elements.matched, (Counts{1, 1}));
  EXPECT_EQ(sum.keys[0].elements.rejected[5], (Counts{2, 1}));
  EXPECT_EQ(sum.keys[0].rejected[0], Counts{1});
  EXPECT_EQ(sum.keys[0].rejected[5], Counts{1});
}

TEST(BoardCoverage, DoesNotAddThatOfAnotherConfiguration) {
  const auto usbc = [](std::initializer_list<PropertyValue> personalities) {
    return BoardCoverage(Dict({{"USBC", List(personalities)}}));
  };
  const auto list = Dict({{"RID", List({1})}});
  const BoardCoverage others[] = {usbc({list, list}),
                                  usbc({"x"}),
                                  usbc({Dict({{"RID", List({1, 2})}})}),
                                  usbc({Dictionary()}),
                                  BoardCoverage(Dict({{"Thunderbolt", List({list})}})),
                                  BoardCoverage(Dict({{"USBC", List({list})}, {"Notes", 1}})),
                                  BoardCoverage(Array())};
  for (const auto& other : others) {
    auto coverage = usbc({list});
    EXPECT_FALSE(coverage.Add(other));
    EXPECT_EQ(coverage, usbc({list}));
  }
  auto two = usbc({list, Dictionary()});
  EXPECT_FALSE(two.Add(usbc({Dictionary(), list})));
}

TEST(BoardCoverage, HasNothingOfKeysThatAreNotRead) {
  const BoardCoverage coverage(
      Dict({{"Notes", List({Dictionary()})}, {"USBC", Dictionary()}, {"LegacyUSBC", Array()}}));
  EXPECT_EQ(CountsOf(coverage).All(), 0u);
  EXPECT_EQ(CountsOf(coverage).PerMille(), 1000u);
}

TEST(ForEachList, VisitsThoseOfWhichAControllerNeedsOneValue) {
  const auto personality = Dict({{"Port Address", List({1})},
                                 {"ClearNVRAM", List({"a"})},
                                 {"Version", List({1})},
                                 {"MinBoardRevision", List({1})},
                                 {"RID", List({2, 3})},
                                 {"Port UUID", "a"},
                                 {"Ridge UID", List({4})}});
  const auto visited = [&](TypeSet type) {
    std::string keys;
    ForEachList(type, personality, [&](const Requirement& requirement, Array list) {
      keys += std::string(requirement.key) + " " + std::to_string(list.size()) + ", ";
    });
    return keys;
  };
  EXPECT_EQ(visited(Types::LegacyUsbc), "Port Address 1, ");
  EXPECT_EQ(visited(Types::Usbc), "Port Address 1, RID 2, ");
  EXPECT_EQ(visited(Types::Thunderbolt), "Port Address 1, RID 2, Ridge UID 1, ");
}

TEST(CoverageCounts, RoundDown) {
  EXPECT_EQ(
      (CoverageCounts{.personalities = 2, .matchedPersonalities = 1, .elements = 1}).PerMille(),
      333u);
  CoverageCounts all{.personalities = 1000, .matchedPersonalities = 1000, .elements = 1000};
  all.matchedElements = 999;
  EXPECT_EQ(all.PerMille(), 999u);
}

// The same counts, from the explanation of the run.
class Recount {
 public:
  explicit Recount(const Explanation& explanation)
      : coverage_(explanation.run.result.configuration->value) {
    coverage_.runs = 1;
    for (std::size_t i = 0; i < explanation.keys.size(); ++i) {
      const auto& key = explanation.keys[i];
      for (const auto& controller : key.controllers) {
        for (const auto& pair : controller.pairs) Add(key, controller, pair, coverage_.keys[i]);
      }
    }
  }

  const BoardCoverage& Coverage() const { return coverage_; }

 private:
  static void Add(const ExplainedKey& key, const ExplainedController& controller,
                  const ExplainedPair& pair, TypeCoverage& counts) {
    if (pair.outcome != PairOutcome::Matched && pair.outcome != PairOutcome::Rejected) return;
    const auto* const table = RequirementsOf(key.type).data();
    const auto* const first = pair.outcome == PairOutcome::Matched
                                  ? table + RequirementsOf(key.type).size()
                                  : pair.failures.front().failed.requirement;
    const auto add = [&](TestCounts& to, std::size_t item, const Requirement* rejection) {
      to.Count(item, static_cast<std::size_t>(rejection - table));
    };
    add(counts, pair.personality, first);
    auto element = counts.firstElement[pair.personality];
    const auto personality =
        *(*PersonalitiesOf(key.key, key.value))[pair.personality].AsDictionary();
    ForEachList(key.type, personality, [&](const Requirement& own, Array list) {
      const auto* found = controller.record.Find(own.key);
      bool isTested = &own <= first && found != nullptr;
      for (const auto& value : list) {
        const bool isEqual =
            isTested && (NumbersEqual(value, *found) || StringsEqual(value, *found));
        if (isTested) add(counts.elements, element, isEqual ? first : &own);
        isTested = isTested && !isEqual;
        ++element;
      }
    });
  }

  BoardCoverage coverage_;
};

// What rejects an item and what matches it are all its tests.
void ExpectSums(const TestCounts& counts) {
  for (std::size_t i = 0; i < counts.tested.size(); ++i) {
    auto sum = counts.matched[i];
    for (const auto& rejected : counts.rejected) sum += rejected.empty() ? 0 : rejected[i];
    EXPECT_EQ(sum, counts.tested[i]);
  }
}

TEST(BoardCoverage, AgreesWithTheExplanationsOfRandomPairs) {
  std::mt19937_64 random(20261123);
  Bench bench{PropertyValue(Dictionary())};
  CoverageCounts all;
  for (int i = 0; i < CountedPairs && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    const auto pair = testing::MakeRandomPair(random);
    bench.Write(pair.configuration);
    const auto explanation =
        Explain(pair.computer.Recorded(), ToolOptions(bench.Path(), pair.bypassVersion));
    if (explanation.keys.empty()) continue;  // nothing was matched
    const auto coverage = bench.Of(pair.computer, pair.bypassVersion);
    EXPECT_EQ(coverage, Recount(explanation).Coverage());
    for (const auto& key : coverage.keys) {
      ExpectSums(key);
      ExpectSums(key.elements);
    }
    all += CountsOf(coverage);
  }
  EXPECT_GE(all.matchedPersonalities, static_cast<std::size_t>(CountedPairs) / 10);
  EXPECT_GE(all.testedElements, all.matchedElements);
  EXPECT_GE(all.matchedElements, static_cast<std::size_t>(CountedPairs) / 10);
}

}  // namespace
}  // namespace fernwick::lab
