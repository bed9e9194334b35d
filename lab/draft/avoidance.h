#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace fernwick::lab {

/// A flag for each candidate of a dimension.
using CandidateFlags = std::vector<bool>;

/// A constraint satisfaction problem: choose one candidate in each dimension so that every obstacle
/// rejects at least one of them. An obstacle is a clause: "not one of these in the first dimension,
/// or not one of these in the second, or ...".
struct AvoidanceProblem {
  std::vector<std::size_t> candidates;  // by dimension, how many; at least one
  // By obstacle and dimension, which candidates it accepts.
  std::vector<std::vector<CandidateFlags>> accepted = {};
};

/// The result of a search.
struct Avoidance {
  std::optional<std::vector<std::size_t>> chosen = {};  // by dimension the index of a candidate
  bool isCutShort = false;                              // the search ended before it was complete
};

/// Searches for a choice. Prefers the first candidates, those of the last dimensions most. `steps`
/// is what the search may cost, in tests of one candidate against one obstacle: it is reduced by
/// what was used, and the search ends, cut short, when it is 0.
Avoidance FindAvoidance(const AvoidanceProblem& problem, std::size_t& steps);

}  // namespace fernwick::lab
