#include "lab/survey_totals.h"

#include <numeric>

#include "lab/explain_words.h"

namespace fernwick::lab {

void SurveyTotals::Add(const SurveyRow& row) {
  ++outcomes[static_cast<std::size_t>(row.outcome)];
  matches += row.matches.size();
}

std::size_t SurveyTotals::Computers() const {
  return std::accumulate(outcomes.begin(), outcomes.end(), std::size_t{0});
}

std::string Describe(const SurveyTotals& totals) {
  const auto count = [&](Outcome outcome) {
    return std::to_string(totals.outcomes[static_cast<std::size_t>(outcome)]);
  };
  return Counted(totals.Computers(), "computer", "computers") + ": " + count(Outcome::Plan) +
         " with a plan, " + count(Outcome::NoPlan) + " without, " + count(Outcome::Bypassed) +
         " bypassed, " + count(Outcome::Refused) + " refused, " + count(Outcome::AbnormalEnd) +
         " ended abnormally; " + Counted(totals.matches, "match", "matches") + "\n";
}

}  // namespace fernwick::lab
