#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace fernwick::lab {

/// Whether something is so for each candidate of a dimension.
using CandidateFlags = std::vector<bool>;

/// A choice of one candidate in each dimension such that every obstacle rejects at least one of
/// them.
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

/// Searches for a choice, and prefers the first candidates, and those of the last dimensions more
/// than those of the first. Subtracts its steps, a candidate and an obstacle each, from `steps`,
/// and ends when there are none left.
Avoidance FindAvoidance(const AvoidanceProblem& problem, std::size_t& steps);

}  // namespace fernwick::lab
