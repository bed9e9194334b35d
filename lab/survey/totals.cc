#include "lab/survey/totals.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/text.h"

namespace fernwick::lab {
namespace {

// "3 planned, 1 current"; empty without computers.
std::string ClassesText(const ClassCounts& counts) {
  std::string text;
  for (std::size_t i = 0; i < ClassCount; ++i) {
    if (counts[i] == 0) continue;
    text +=
        (text.empty() ? "" : ", ") + std::to_string(counts[i]) + " " + std::string(ClassNames[i]);
  }
  return text;
}

std::string ClassesLine(const std::string& name, const ClassCounts& counts) {
  const auto text = ClassesText(counts);
  return text.empty() ? "" : "  " + name + ": " + text + "\n";
}

std::string DescribeClasses(const SurveyTotals& totals) {
  auto lines = ClassesLine("classes", totals.classes);
  for (const auto& [board, counts] : totals.boards) {
    lines += ClassesLine("board " + PrintableText(board), counts);
  }
  lines += ClassesLine("(other boards)", totals.otherBoards);
  std::vector<std::pair<std::string_view, std::size_t>> keys(totals.blockingKeys.begin(),
                                                             totals.blockingKeys.end());
  std::ranges::stable_sort(keys, std::greater(), [](const auto& key) { return key.second; });
  for (const auto& [key, count] : keys) {
    lines += "  " + std::to_string(count) + " blocked by " + std::string(key) + "\n";
  }
  return lines;
}

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

void SurveyTotals::CountClass(const SurveyRow& row) {
  const auto index = static_cast<std::size_t>(*row.computerClass);
  ++classes[index];
  if (row.computerClass == ComputerClass::Refused) return;
  if (row.computerClass == ComputerClass::Blocked) ++blockingKeys[row.miss->key];
  const auto board = row.board.value_or("-");
  const bool isCounted = boards.size() < MaxBoards || boards.contains(board);
  ++(isCounted ? boards[board] : otherBoards)[index];
}

void SurveyTotals::Add(const SurveyRow& row) {
  CountClass(row);
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
         "\n" + DescribeClasses(totals) + DescribeDiagnostics(totals);
}

}  // namespace fernwick::lab
