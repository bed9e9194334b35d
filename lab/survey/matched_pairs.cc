#include "lab/survey/matched_pairs.h"

#include <algorithm>

namespace fernwick::lab {

std::vector<MatchedPair> MatchedPairs(const RunRecorder& run) {
  std::vector<MatchedPair> matched;
  for (const auto& key : run.matching.keys) {
    for (std::size_t i = 0; i < key.controllers.size(); ++i) {
      const auto& pairs = key.controllers[i].pairs;
      const auto first = std::ranges::find(pairs, PairOutcome::Matched, &PairDecision::outcome);
      if (first == pairs.end()) continue;
      const auto personality = static_cast<std::size_t>(first - pairs.begin());
      matched.push_back({&key, i, personality, &run.matches[matched.size()]});
    }
  }
  return matched;
}

}  // namespace fernwick::lab
