#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "lab/survey_row.h"

namespace fernwick::lab {

/// What a survey comes to.
struct SurveyTotals {
  std::array<std::size_t, 5> outcomes = {};  // by Outcome
  std::size_t matches = 0;

  void Add(const SurveyRow& row);
  std::size_t Computers() const;
};

/// One line, with its line feed.
std::string Describe(const SurveyTotals& totals);

/// A number in front of what it counts, of which the singular is given: "1 computer", "2
/// computers".
std::string Counted(std::size_t count, const std::string& noun);

}  // namespace fernwick::lab
