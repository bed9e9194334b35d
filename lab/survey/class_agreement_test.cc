// That the class of a computer and its nearest miss agree with the explanation of the run: over
// random pairs of a computer and a payload.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <string>
#include <tuple>

#include "lab/explain/explanation.h"
#include "lab/survey/computer_class.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/coverage_counting.h"
#include "testing/inputs/random_pairs.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::RandomPair;

constexpr bool IsSlowRun = testing::UnderAddressSanitizer || testing::CountingCoverage;
constexpr int ClassifiedPairs = IsSlowRun ? 1000 : 5000;

// An explained pair of a run without a match.
struct Candidate {
  const ExplainedController* controller;
  const ExplainedPair* pair;
  std::string type;
};

std::vector<Candidate> CandidatesOf(const Explanation& explanation) {
  std::vector<Candidate> candidates;
  for (const auto& key : explanation.keys) {
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        if (pair.outcome != PairOutcome::Rejected) continue;
        candidates.push_back({&controller, &pair, std::string(key.key)});
      }
    }
  }
  return candidates;
}

// Whether an older version alone would make it a match.
bool IsCurrent(const Candidate& candidate) {
  bool isNotNewer = false;
  for (const auto& [failed, location] : candidate.pair->failures) {
    if (failed.reason == FailureReason::NotNewer) {
      if (!failed.found || NumberGreater(*failed.wanted, *failed.found)) return false;
      isNotNewer = failed.wanted->IsNumber();
      if (!isNotNewer) return false;
    } else if (failed.reason != FailureReason::BelowInstalled) {
      return false;
    }
  }
  return isNotNewer;
}

bool IsForTheController(const Candidate& candidate) {
  return std::ranges::all_of(candidate.pair->failures, [](const ExplainedFailure& failure) {
    return FindKey(failure.failed.requirement->key)->kind == KeyKind::OneNumber;
  });
}

const Candidate* NearestOf(const std::vector<Candidate>& candidates) {
  const Candidate* nearest = nullptr;
  for (const auto& candidate : candidates) {
    if (nearest == nullptr || candidate.pair->distance < nearest->pair->distance) {
      nearest = &candidate;
    }
  }
  return nearest;
}

// What is expected of the class, from the explanation alone.
struct Expected {
  ComputerClass computerClass;
  std::optional<Candidate> miss = {};
};

Expected OfUnmatched(const Explanation& explanation, const Recording& recording) {
  RecordedRegistry registry(recording);
  const auto ports = CollectPortControllers(registry);
  const auto ridges = CollectThunderboltControllers(registry);
  if (ports && ridges && ports->records.empty() && ridges->records.empty()) {
    return {ComputerClass::NoControllers};
  }
  auto candidates = CandidatesOf(explanation);
  auto current = candidates;
  std::erase_if(current, [](const Candidate& candidate) { return !IsCurrent(candidate); });
  if (!current.empty()) return {ComputerClass::Current, *NearestOf(current)};
  const auto* nearest = NearestOf(candidates);
  if (nearest == nullptr) return {ComputerClass::Unmatched};
  return {IsForTheController(*nearest) ? ComputerClass::Blocked : ComputerClass::Unmatched,
          *nearest};
}

Expected ExpectedOf(const Explanation& explanation, const Recording& recording) {
  switch (explanation.end) {
    case RunEnd::Planned: return {ComputerClass::Planned};
    case RunEnd::NothingMatched: return OfUnmatched(explanation, recording);
    case RunEnd::NoFirmware: return {ComputerClass::Blocked};
    case RunEnd::NoDictionary: return {ComputerClass::NoConfiguration};
    case RunEnd::NoConfiguration: return {ComputerClass::UnknownBoard};  // there is one board
    case RunEnd::Bypassed: return {ComputerClass::Bypassed};
    case RunEnd::Abnormal: break;
  }
  return {ComputerClass::Fault};
}

void ExpectMiss(const std::optional<Candidate>& expected, const std::optional<NearestMiss>& found) {
  ASSERT_EQ(found.has_value(), expected.has_value());
  if (!expected) return;
  const auto& first = expected->pair->failures.front().failed;
  EXPECT_EQ(std::tuple(found->controller, found->type, found->personality, found->key),
            std::tuple(expected->controller->path, expected->type, expected->pair->personality + 1,
                       std::string(first.requirement->key)));
  EXPECT_TRUE(FailureText(first).starts_with(found->text.substr(0, 500)));
}

TEST(ClassAgreement, WithExplanationsIsTrueOfRandomPairs) {
  std::mt19937_64 random(20261122);
  ClassCounts counts = {};
  const testing::TemporaryDirectory payload;
  for (int i = 0; i < ClassifiedPairs && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    const RandomPair pair = testing::MakeRandomPair(random);
    const auto& recording = pair.computer.Recorded();
    payload.Write("Fernwick/Zed-42/Config.plist", WriteXmlPropertyList(pair.configuration));
    const auto options = ToolOptions(payload.Path(), pair.bypassVersion);
    const auto run = RunTool(recording, options, KeptOutput::Counts);
    const auto classified = Classify(run, recording, options);
    const auto explanation = Explain(recording, options);
    const auto expected = ExpectedOf(explanation, recording);
    EXPECT_EQ(NameOf(classified.computerClass), NameOf(expected.computerClass));
    if (explanation.end == RunEnd::NoFirmware) {
      EXPECT_EQ(classified.miss->key, "Firmware");
    } else {
      ExpectMiss(expected.miss, classified.miss);
    }
    ++counts[static_cast<std::size_t>(classified.computerClass)];
  }
  // Each comes about; nothing here is refused.
  for (std::size_t i = 0; i + 1 < ClassCount; ++i) {
    EXPECT_GE(counts[i], static_cast<std::size_t>(ClassifiedPairs) / 1000) << ClassNames[i];
  }
}

}  // namespace
}  // namespace fernwick::lab
