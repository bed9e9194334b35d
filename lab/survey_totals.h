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

}  // namespace fernwick::lab
