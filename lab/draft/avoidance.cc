// Backtracking search (DPLL over finite domains). A choice that every obstacle rejects is a point
// outside a union of boxes, which is NP-complete: the dimensions are variables, each obstacle is a
// clause. Where only one dimension can make an obstacle reject, that dimension keeps the candidates
// that it rejects (unit propagation). Otherwise the search selects the obstacle that the fewest
// dimensions can make reject, and branches on which of these does; in the later branches the
// dimensions of the earlier ones keep the candidates that the obstacle accepts. A pass over the
// obstacles costs their number times that of the candidates; there may be exponentially many
// passes, so the caller limits the steps.

#include "lab/draft/avoidance.h"

#include <algorithm>

namespace fernwick::lab {
namespace {

// The candidates of each dimension that are left.
using Domains = std::vector<CandidateFlags>;

class AvoidanceSearch {
 public:
  AvoidanceSearch(const AvoidanceProblem& problem, std::size_t& steps)
      : problem_(problem), steps_(steps) {
    for (const auto count : problem.candidates) {
      all_.emplace_back(count, true);
      nodeSteps_ += count * problem.accepted.size();
    }
  }

  Avoidance Find() {
    Search(std::move(all_));
    return std::move(result_);
  }

 private:
  using Ways = std::vector<std::size_t>;

  // An obstacle that some choice is left for, and the dimensions in which a candidate that is left
  // makes it reject.
  struct OpenObstacle {
    std::size_t index;
    Ways ways;
  };

  // Whether the search ends: with a choice, or cut short.
  bool Search(Domains domains) {
    for (;;) {
      if (steps_ < nodeSteps_) {
        result_.isCutShort = true;
        return true;
      }
      steps_ -= nodeSteps_;
      bool isNarrowed = false;
      const auto open = Propagate(domains, isNarrowed);
      if (!open) {
        if (isNarrowed) continue;
        Choose(domains);
        return true;
      }
      if (open->ways.empty()) return false;
      if (!isNarrowed) return Branch(*open, domains);
    }
  }

  // Narrows the dimension of every obstacle that only one can make reject. Returns the obstacle
  // with the fewest ways of the others, or one without any; nullopt when there is none.
  std::optional<OpenObstacle> Propagate(Domains& domains, bool& isNarrowed) const {
    std::optional<OpenObstacle> fewest;
    for (std::size_t i = 0; i < problem_.accepted.size(); ++i) {
      auto ways = WaysOf(problem_.accepted[i], domains);
      if (!ways) continue;
      if (ways->empty()) return OpenObstacle{i, {}};
      if (ways->size() == 1) {
        Remove(problem_.accepted[i][ways->front()], domains[ways->front()], true);
        isNarrowed = true;
      } else if (!fewest || ways->size() < fewest->ways.size()) {
        fewest = {i, *std::move(ways)};
      }
    }
    return fewest;
  }

  bool Branch(const OpenObstacle& open, Domains& domains) {
    for (const auto dimension : open.ways) {
      const auto& accepted = problem_.accepted[open.index][dimension];
      auto narrowed = domains;
      Remove(accepted, narrowed[dimension], true);
      if (Search(std::move(narrowed))) return true;
      Remove(accepted, domains[dimension], false);
    }
    return false;
  }

  // Removes the candidates that are accepted, or those that are not.
  static void Remove(const CandidateFlags& accepted, CandidateFlags& domain, bool isAccepted) {
    for (std::size_t i = 0; i < accepted.size(); ++i) {
      if (accepted[i] == isAccepted) domain[i] = false;
    }
  }

  // Nullopt when the obstacle accepts no candidate of a dimension.
  static std::optional<Ways> WaysOf(const std::vector<CandidateFlags>& accepted,
                                    const Domains& domains) {
    Ways ways;
    for (std::size_t dimension = 0; dimension < domains.size(); ++dimension) {
      bool accepts = false;
      bool rejects = false;
      for (std::size_t i = 0; i < domains[dimension].size(); ++i) {
        if (domains[dimension][i]) (accepted[dimension][i] ? accepts : rejects) = true;
      }
      if (!accepts) return std::nullopt;
      if (rejects) ways.push_back(dimension);
    }
    return ways;
  }

  void Choose(const Domains& domains) {
    auto& chosen = result_.chosen.emplace();
    for (const auto& domain : domains) {
      chosen.push_back(static_cast<std::size_t>(std::ranges::find(domain, true) - domain.begin()));
    }
  }

  const AvoidanceProblem& problem_;
  std::size_t& steps_;
  Domains all_;
  std::size_t nodeSteps_ = 0;
  Avoidance result_;
};

}  // namespace

Avoidance FindAvoidance(const AvoidanceProblem& problem, std::size_t& steps) {
  return AvoidanceSearch(problem, steps).Find();
}

}  // namespace fernwick::lab
