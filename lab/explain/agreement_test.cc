// That an explanation and the run agree, and that a trace changes no byte of what the tool prints:
// over random pairs of a computer and a payload.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "lab/explain/explanation.h"
#include "lab/explain/print.h"
#include "lab/support/words.h"
#include "plan/value_conversions.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/coverage_counting.h"
#include "testing/inputs/random_pairs.h"
#include "testing/programs/report_lines.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::RandomPair;
using testing::ReportedMatch;

constexpr int FullCount = 10000;

// The sanitizers, and the counters of coverage, make a run take many times as long.
constexpr bool IsSlow = testing::UnderAddressSanitizer || testing::CountingCoverage;
constexpr int PairCount = IsSlow ? FullCount / 10 : FullCount;

// How often there was everything that can be explained.
using Counts = std::map<std::string, int, std::less<>>;

void Count(std::string_view what, Counts& counts) {
  ++counts[std::string(what)];
}

void CountAll(const Explanation& explanation, Counts& counts) {
  Count(NameOf(explanation.end), counts);
  for (const auto& key : explanation.keys) {
    if (key.type == Types::None) Count("no type", counts);
    if (key.type != Types::None && !key.hasExpectedShape) Count("wrong shape", counts);
    for (const auto& skip : key.skipped) Count(NameOf(skip.reason), counts);
    for (const auto& personality : key.personalities) {
      if (!personality.unread.empty()) Count("unread", counts);
    }
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        Count(NameOf(pair.outcome), counts);
        for (const auto& failure : pair.failures) Count(NameOf(failure.failed.reason), counts);
        if (pair.failures.size() > 1) Count("several failures", counts);
      }
    }
  }
}

// The pairs that the explanation calls matched, as the report of the run would show them: up to the
// match that ends the run.
std::vector<ReportedMatch> ExplainedMatches(const Explanation& explanation) {
  std::vector<ReportedMatch> matches;
  for (const auto& key : explanation.keys) {
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        if (pair.outcome != PairOutcome::Matched) continue;
        const auto& firmware = key.personalities[pair.personality].firmware;
        const auto rid = Integer32Of(controller.record.Find("RID"));
        matches.push_back(
            {std::string(key.key), std::to_string(rid),
             std::string(TextOf(firmware ? &*firmware : nullptr).value_or("(null)"))});
      }
    }
  }
  matches.resize(std::min(matches.size(), explanation.run.result.plannedMatches + 1));
  return matches;
}

std::size_t Occurrences(std::string_view piece, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) ++count;
  return count;
}

bool HasControllerWithoutUid(const Recording& recording) {
  return std::ranges::any_of(recording.entries, [](const RecordedEntry& entry) {
    return entry.className == ThunderboltControllerClass && entry.properties.Find("UID") == nullptr;
  });
}

// The failures of pairs: all, and those that the text has a line for.
struct FailureCounts {
  std::size_t all = 0;
  std::size_t shown = 0;
};

FailureCounts CountFailures(const Explanation& explanation) {
  FailureCounts counts;
  for (const auto& key : explanation.keys) {
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        counts.all += pair.failures.size();
        if (pair.outcome != PairOutcome::NotReached) counts.shown += pair.failures.size();
      }
    }
  }
  return counts;
}

// How a run ended and all that it printed.
struct Observed {
  int status;
  std::optional<Fault> fault;
  std::string standardOutput;
  std::string standardError;

  friend bool operator==(const Observed&, const Observed&) = default;
};

Observed ObservedOf(const ToolRun& run) {
  return {run.result.status, run.result.fault, run.standardOutput, run.standardError};
}

// One pair, its configuration as a payload in a directory.
class Bench {
 public:
  explicit Bench(RandomPair pair) : pair_(std::move(pair)) {
    directory_.Write("Fernwick/Zed-42/Config.plist", WriteXmlPropertyList(pair_.configuration));
    options_ = ToolOptions(directory_.Path(), pair_.bypassVersion);
    explanation_ = Explain(pair_.computer.Recorded(), options_);
  }

  const Explanation& Explained() const { return explanation_; }

  // Whatever the explanation is, it can be printed, and both forms have a line for each failure.
  void ExpectPrintedWhole() {
    std::string text;
    std::string json;
    PrintExplanationText(explanation_, false, [&](std::string_view piece) { text += piece; });
    PrintExplanationJson(explanation_, [&](std::string_view piece) { json += piece; });
    auto counts = CountFailures(explanation_);
    if (explanation_.withoutSwitch) {
      const auto without = CountFailures(*explanation_.withoutSwitch);
      counts.all += without.all;
      counts.shown += without.shown;
    }
    EXPECT_EQ(Occurrences(" check]\n", text), counts.shown);
    EXPECT_EQ(Occurrences("\"hardwareKey\": ", json), counts.all);
  }

  void ExpectAgreement() {
    const auto quiet = RunWithoutTrace();
    EXPECT_EQ(explanation_.run.result.fault, quiet.fault);
    EXPECT_EQ(ObservedOf(RunTool(pair_.computer.Recorded(), options_)), quiet);
    if (quiet.fault) return;
    EXPECT_EQ(ObservedOf(explanation_.run), quiet);
    const bool isPlanned = explanation_.end == RunEnd::Planned;
    EXPECT_EQ(Occurrences("<string>-payload</string>", quiet.standardOutput),
              isPlanned ? explanation_.run.result.matches.size() : 0u);
    // The verbose listing collects an inventory that perhaps no key of the configuration asks for.
    if (HasControllerWithoutUid(pair_.computer.Recorded())) return;
    options_.verbose = true;
    const auto verbose = RunWithoutTrace();
    EXPECT_EQ(ObservedOf(RunTool(pair_.computer.Recorded(), options_)), verbose);
    EXPECT_EQ(ExplainedMatches(explanation_), testing::ReportedMatches(verbose.standardOutput));
  }

 private:
  Observed RunWithoutTrace() {
    RecordedRegistry registry(pair_.computer.Recorded());
    StringConsole console;
    const auto result = Run(options_, registry, console);
    return {result.status, result.fault, console.Output(), console.Error()};
  }

  RandomPair pair_;
  testing::TemporaryDirectory directory_;
  Options options_;
  Explanation explanation_{.end = RunEnd::Abnormal};
};

// Everything possible comes about, often enough to mean something. The numbers are those for the
// full count.
void ExpectEveryOutcome(const Counts& counts) {
  const std::map<std::string, int> minimum = {
      {"planned", 1000},
      {"nothingMatched", 1000},
      {"noFirmware", 100},
      {"noDictionary", 50},
      {"noConfiguration", 50},
      {"bypassed", 10},
      {"abnormal", 50},
      {"matched", 1000},
      {"rejected", 1000},
      {"notReached", 1000},
      {"notAPersonality", 200},
      {"personalityLacksKey", 200},
      {"hardwareLacksKey", 200},
      {"wrongKind", 200},
      {"unequal", 1000},
      {"notNewer", 200},
      {"engineeringFirmware", 200},
      {"aboveInstalled", 40},
      {"belowInstalled", 20},
      {"aboveBoardRevision", 50},
      {"belowBoardRevision", 50},
      {"notAtRootOfTopology", 50},
      {"routeString", 50},
      {"addressBelowThunderbolt", 50},
      {"no type", 200},
      {"wrong shape", 50},
      {"unread", 200},
      {"several failures", 1000},
  };
  for (const auto& [what, count] : minimum) {
    const auto found = counts.find(what);
    EXPECT_GE(found == counts.end() ? 0 : found->second, count * PairCount / FullCount) << what;
  }
}

TEST(ExplainAgreement, IsTrueOfRandomPairs) {
  std::mt19937_64 random(20261121);
  Counts counts;
  for (int i = 0; i < PairCount && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    Bench bench(testing::MakeRandomPair(random));
    bench.ExpectAgreement();
    bench.ExpectPrintedWhole();
    CountAll(bench.Explained(), counts);
  }
  ExpectEveryOutcome(counts);
}

}  // namespace
}  // namespace fernwick::lab
