#include "lab/survey/totals.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "lab/support/words.h"
#include "lab/survey/text.h"

namespace fernwick::lab {
namespace {

std::string DescribeDiagnostics(const SurveyTotals& totals) {
  std::vector<DiagnosticCount> counts;
  for (const auto& [text, count] : totals.diagnostics) counts.push_back({text, count});
  std::ranges::stable_sort(counts, std::greater(), &DiagnosticCount::count);
  if (totals.otherDiagnostics > 0) counts.push_back({"(others)", totals.otherDiagnostics});
  std::string lines;
  for (const auto& count : counts) lines += "  " + DiagnosticText(count) + "\n";
  return lines;
}

}  // namespace

void SurveyTotals::Add(const SurveyRow& row) {
  ++outcomes[static_cast<std::size_t>(row.outcome)];
  matches += row.matches.size();
  missingImages +=
      static_cast<std::size_t>(std::ranges::count(row.matches, true, &SurveyMatch::isImageMissing));
  for (const auto& [text, count] : row.diagnostics) {
    const auto known = diagnostics.find(text);
    if (known != diagnostics.end()) {
      known->second += count;
    } else if (diagnostics.size() < MaxDiagnostics) {
      diagnostics.emplace(text, count);
    } else {
      otherDiagnostics += count;
    }
  }
}

std::size_t SurveyTotals::Computers() const {
  return std::accumulate(outcomes.begin(), outcomes.end(), std::size_t{0});
}

std::string Describe(const SurveyTotals& totals) {
  const auto count = [&](Outcome outcome) { return std::to_string(totals.Count(outcome)); };
  return Counted(totals.Computers(), "computer", "computers") + ": " + count(Outcome::Plan) +
         " with a plan, " + count(Outcome::NoPlan) + " without, " + count(Outcome::Bypassed) +
         " bypassed, " + count(Outcome::Refused) + " refused, " + count(Outcome::AbnormalEnd) +
         " ended abnormally; " + Counted(totals.matches, "match", "matches") +
         (totals.missingImages == 0
              ? ""
              : ", " + std::to_string(totals.missingImages) + " without the image file") +
         "\n" + DescribeDiagnostics(totals);
}

}  // namespace fernwick::lab
