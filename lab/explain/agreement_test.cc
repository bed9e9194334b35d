// That an explanation and the run agree, and that no recorder changes a byte of what the tool
// prints: over random pairs of a computer and a payload.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>

#include "lab/explain/explanation.h"
#include "lab/explain/print.h"
#include "lab/support/abnormal_end.h"
#include "lab/support/captured_run.h"
#include "lab/support/words.h"
#include "plan/value_conversions.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/coverage_counting.h"
#include "testing/inputs/random_pairs.h"
#include "testing/programs/report_lines.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {

bool operator==(const CapturedRun& a, const CapturedRun& b) {
  return a.status == b.status && a.standardOutput == b.standardOutput &&
         a.standardError == b.standardError;
}

void PrintTo(const CapturedRun& run, std::ostream* out) {
  *out << "status " << run.status << "\n" << run.standardOutput << run.standardError;
}

namespace {

using testing::RandomPair;
using testing::ReportedMatch;

constexpr int FullCount = 10000;

// The sanitizers, and counters that each process writes at its end, make a run take twenty times as
// long.
constexpr bool IsSlow = testing::UnderAddressSanitizer || testing::CountingCoverage;
constexpr int PairCount = IsSlow ? FullCount / 10 : FullCount;

// How often everything that can be told was told.
using Counts = std::map<std::string, int, std::less<>>;

void Count(std::string_view what, Counts& counts) {
  ++counts[std::string(what)];
}

void CountAll(const Explanation& explanation, Counts& counts) {
  Count(NameOf(explanation.end), counts);
  for (const auto& key : explanation.keys) {
    if (key.type == Types::None) Count("no type", counts);
    if (key.type != Types::None && !key.hasShape) Count("wrong shape", counts);
    for (const auto& omission : key.omitted) Count(NameOf(omission.why), counts);
    for (const auto& personality : key.personalities) {
      if (!personality.unread.empty()) Count("unread", counts);
    }
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        Count(NameOf(pair.outcome), counts);
        for (const auto& failure : pair.failures) {
          Count(NameOf(failure.requirement.shortfall), counts);
        }
        if (pair.failures.size() > 1) Count("several failures", counts);
      }
    }
  }
}

// What the explanation calls matched, as the report of the run would show it: up to the match that
// ends the run.
std::vector<ReportedMatch> ExplainedMatches(const Explanation& explanation) {
  std::vector<ReportedMatch> matches;
  for (const auto& [key, controller, pair] : MatchedPairs(explanation)) {
    if (matches.size() > explanation.plannedMatchCount) break;
    const auto& firmware = key->personalities[pair->personality].firmware;
    const auto rid = Integer32Of(controller->record.Find("RID"));
    matches.push_back({key->key, std::to_string(rid),
                       std::string(TextOf(firmware ? &*firmware : nullptr).value_or("(null)"))});
  }
  return matches;
}

std::size_t Occurrences(std::string_view piece, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) ++count;
  return count;
}

bool HasControllerWithoutUid(const Recording& recording) {
  return std::ranges::any_of(recording.entries, [](const RecordedEntry& entry) {
    return entry.class_ == ThunderboltControllerClass && entry.properties.Find("UID") == nullptr;
  });
}

// One pair after the other, each as a payload in a directory.
class Bench {
 public:
  void Hold(const RandomPair& pair) {
    recording_ = pair.computer.Recorded();
    directory_.Write("Fernwick/Zed-42/Config.plist", WriteXmlPropertyList(pair.configuration));
    arguments_ = {"-p", directory_.Path()};
    if (pair.bypassVersion) arguments_.emplace_back("--bypassVersion");
    explanation_ = Explain(recording_, directory_.Path(), pair.bypassVersion);
  }

  const Explanation& Explained() const { return explanation_; }

  // Whatever the explanation is, it can be told, and both ways of telling it have a line for each
  // failure.
  void ExpectToldWhole() {
    std::string text;
    std::string json;
    PrintExplanationText(explanation_, false, [&](std::string_view piece) { text += piece; });
    PrintExplanationJson(explanation_, [&](std::string_view piece) { json += piece; });
    std::size_t failures = 0;
    for (const auto& key : explanation_.keys) {
      for (const auto& controller : key.controllers) {
        for (const auto& pair : controller.pairs) failures += pair.failures.size();
      }
    }
    EXPECT_EQ(Occurrences(" check]\n", text), failures);
    EXPECT_EQ(Occurrences("\"shortfall\": ", json), failures);
  }

  void ExpectAgreement() {
    if (explanation_.end == RunEnd::Abnormal) return ExpectAbnormalEnd();
    const auto quiet = Run({}, nullptr);
    EXPECT_EQ(explanation_.run, quiet);
    const bool isPlanned = explanation_.end == RunEnd::Planned;
    EXPECT_EQ(Occurrences("<string>-payload</string>", quiet.standardOutput),
              isPlanned ? explanation_.matchCount : 0u);
    // The verbose listing takes an inventory that no key of the configuration may ask for.
    if (HasControllerWithoutUid(recording_)) return;
    const auto verbose = Run({"-v"}, nullptr);
    RunRecorder recorder;
    EXPECT_EQ(Run({"-v"}, &recorder), verbose);
    EXPECT_EQ(ExplainedMatches(explanation_), testing::ReportedMatches(verbose.standardOutput));
  }

 private:
  void ExpectAbnormalEnd() {
    RunRecorder recorder;
    EXPECT_EQ(FaultThatEnds([&] { Run({}, nullptr); }), explanation_.fault);
    EXPECT_EQ(FaultThatEnds([&] { Run({}, &recorder); }), explanation_.fault);
  }

  CapturedRun Run(std::vector<std::string> options, RunRecorder* recorder) {
    options.insert(options.end(), arguments_.begin(), arguments_.end());
    RecordedRegistry registry(recording_);
    return RunCaptured(registry, options, recorder);
  }

  testing::TemporaryDirectory directory_;
  Recording recording_;
  std::vector<std::string> arguments_;
  Explanation explanation_{.end = RunEnd::Abnormal};
};

// Everything that can come about does, often enough to mean something. The numbers are those for
// the full count.
void ExpectEveryOutcome(const Counts& counts) {
  const std::map<std::string, int> least = {
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
  for (const auto& [what, count] : least) {
    const auto found = counts.find(what);
    EXPECT_GE(found == counts.end() ? 0 : found->second, count * PairCount / FullCount) << what;
  }
}

TEST(ExplainAgreement, HoldsOverRandomPairs) {
  std::mt19937_64 random(20261121);
  Bench bench;
  Counts counts;
  for (int i = 0; i < PairCount && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    bench.Hold(testing::MakeRandomPair(random));
    bench.ExpectAgreement();
    bench.ExpectToldWhole();
    CountAll(bench.Explained(), counts);
  }
  ExpectEveryOutcome(counts);
}

}  // namespace
}  // namespace fernwick::lab
