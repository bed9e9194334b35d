// Optimal string alignment (edit distance with exchanges of neighbours), by dynamic programming
// over three rows: O(a * b) time and O(b) memory. Words have a few dozen characters.

#include "lab/lint/spelling.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxDistance = 2;

// The letters and digits, without their case.
std::string Normalized(std::string_view word) {
  std::string normalized;
  for (const char c : word) {
    if (c == ' ' || c == '-' || c == '_') continue;
    normalized += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return normalized;
}

bool IsExchange(std::string_view a, std::string_view b, std::size_t i, std::size_t j) {
  return i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
}

// For short words, whose neighbours are often other words: a character too many or two exchanged,
// as in "RIDs".
bool IsSlip(std::string_view word, std::string_view meant) {
  return word.size() > meant.size() || std::ranges::is_permutation(word, meant);
}

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit) {
  const auto longer = std::max(a.size(), b.size());
  const auto shorter = std::min(a.size(), b.size());
  if (longer - shorter > limit) return limit + 1;
  // Distances between the beginnings of both: of the rows for i - 2, i - 1 and i characters of a.
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
  std::size_t least = MaxDistance + 1;
  const auto normalized = Normalized(word);
  for (const auto candidate : known) {
    if (word.size() > 2 * candidate.size()) continue;
    const auto meant = Normalized(candidate);
    const auto distance = std::min(EditDistance(word, candidate, MaxDistance),
                                   EditDistance(normalized, meant, MaxDistance));
    auto allowed = std::min(MaxDistance, (candidate.size() - 1) / 4);
    if (allowed == 0 && IsSlip(normalized, meant)) allowed = 1;
    if (distance <= allowed && distance < least) {
      least = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace fernwick::lab
