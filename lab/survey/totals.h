#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <string>

#include "lab/survey/row.h"

namespace fernwick::lab {

/// What a survey comes to.
struct SurveyTotals {
  std::array<std::size_t, 5> outcomes = {};  // by Outcome
  std::size_t matches = 0;

  /// How often each diagnostic came. A text that is new when there are MaxDiagnostics is only
  /// counted in otherDiagnostics, so that memory does not grow with the number of computers.
  std::map<std::string, std::size_t, std::less<>> diagnostics = {};
  std::size_t otherDiagnostics = 0;

  static constexpr std::size_t MaxDiagnostics = 1000;

  void Add(const SurveyRow& row);
  std::size_t Computers() const;
  std::size_t Count(Outcome outcome) const { return outcomes[static_cast<std::size_t>(outcome)]; }
};

/// A line of the computers and one of each diagnostic, the most frequent first, every text safe to
/// show.
std::string Describe(const SurveyTotals& totals);

}  // namespace fernwick::lab
