#include "lab/survey_totals.h"

#include <numeric>

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
  return Counted(totals.Computers(), "computer") + ": " + count(Outcome::Plan) + " with a plan, " +
         count(Outcome::NoPlan) + " without, " + count(Outcome::Bypassed) + " bypassed, " +
         count(Outcome::Refused) + " refused, " + count(Outcome::AbnormalEnd) +
         " ended abnormally; " +
         (totals.matches == 1 ? "1 match" : std::to_string(totals.matches) + " matches") + "\n";
}

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace fernwick::lab
