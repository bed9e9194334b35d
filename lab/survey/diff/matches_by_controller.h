#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/support/tool_run.h"

namespace fernwick::lab {

/// One controller under one type: the same in two runs over the same hardware.
using MatchKey = std::pair<std::string_view, std::size_t>;

inline MatchKey KeyOf(const MatchedPair& pair) {
  return {pair.key->key, pair.controller};
}

/// The matches of a run, in the order of the plan and by controller. Views the run.
class MatchesByController {
 public:
  explicit MatchesByController(const ToolRun& run) : pairs_(MatchedPairs(run)) {
    for (const auto& pair : pairs_) byKey_.emplace(KeyOf(pair), &pair);
  }
  MatchesByController(const MatchesByController&) = delete;
  MatchesByController& operator=(const MatchesByController&) = delete;

  const std::vector<MatchedPair>& InOrder() const { return pairs_; }

  /// Null when the controller has no match.
  const MatchedPair* Find(const MatchKey& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second;
  }

 private:
  const std::vector<MatchedPair> pairs_;
  std::map<MatchKey, const MatchedPair*> byKey_;
};

/// "USBC, controller 1 (RID 2, port 56, version 171)"
std::string NameOf(const MatchedPair& pair);

}  // namespace fernwick::lab
