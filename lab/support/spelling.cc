// Misspellings by optimal string alignment, the edit distance that also counts an exchange of two
// neighbours as one edit. Dynamic programming over the prefixes of both words: the distance of two
// prefixes follows from those that are one character shorter, or two for an exchange, so three rows
// of the table are enough. O(length * length) time for each known word, O(length) memory; words
// whose lengths differ by more than the limit are not compared.

#include "lab/support/spelling.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "value/unicode/ascii.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxDistance = 2;

// In lower case, without blanks, hyphens and underscores.
std::string Normalized(std::string_view word) {
  auto normalized = LowerCase(word);
  std::erase_if(normalized, [](char c) { return c == ' ' || c == '-' || c == '_'; });
  return normalized;
}

bool IsExchange(std::string_view a, std::string_view b, std::size_t i, std::size_t j) {
  return i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
}

// A character too many or characters exchanged ("RIDs", "RDI"): the only edits of a short word that
// do not easily result in another word.
bool IsTypingSlip(std::string_view word, std::string_view meant) {
  return word.size() > meant.size() || std::ranges::is_permutation(word, meant);
}

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), ToLowerAscii);
  return lower;
}

std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit) {
  const auto longer = std::max(a.size(), b.size());
  const auto shorter = std::min(a.size(), b.size());
  if (longer - shorter > limit) return limit + 1;
  // Row i contains the distances of the first i characters of a from each prefix of b.
  std::vector<std::size_t> before(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      if (IsExchange(a, b, i, j)) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    std::swap(before, last);
    std::swap(last, row);
  }
  return std::min(last[b.size()], limit + 1);
}

std::string_view NearestSpelling(std::string_view word, std::span<const std::string_view> known) {
  std::string_view nearest;
  std::size_t minDistance = MaxDistance + 1;
  const auto normalized = Normalized(word);
  for (const auto candidate : known) {
    if (word.size() > 2 * candidate.size()) continue;
    const auto meant = Normalized(candidate);
    const auto distance = std::min(EditDistance(word, candidate, MaxDistance),
                                   EditDistance(normalized, meant, MaxDistance));
    auto allowed = std::min(MaxDistance, (candidate.size() - 1) / 4);
    if (allowed == 0 && IsTypingSlip(normalized, meant)) allowed = 1;
    if (distance <= allowed && distance < minDistance) {
      minDistance = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

std::string SuggestionFor(std::string_view word, std::span<const std::string_view> known) {
  const auto nearest = NearestSpelling(word, known);
  return nearest.empty() ? "" : " (did you mean \"" + std::string(nearest) + "\"?)";
}

}  // namespace fernwick::lab
