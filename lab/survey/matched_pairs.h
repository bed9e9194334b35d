#pragma once

#include <cstddef>
#include <vector>

#include "driver/run_recorder.h"

namespace fernwick::lab {

/// A personality and the controller that it matched. Points into the recorder.
struct MatchedPair {
  const KeyDecisions* key;
  std::size_t controller;   // its place under the key
  std::size_t personality;  // its place in the array; 0 where there is a single one
  const MatchRecord* match;

  const HardwareRecord& Controller() const { return key->controllers[controller].controller; }
};

/// The pairs of a run that matched, in the order of the plan. REQUIRES: the run has come to its
/// end.
std::vector<MatchedPair> MatchedPairs(const RunRecorder& run);

}  // namespace fernwick::lab
