#include "lab/lint/board_names.h"

#include <algorithm>
#include <utility>

#include "lab/lint/finding.h"

namespace fernwick::lab {
namespace {

constexpr std::string_view Prefix = "Zed-";
constexpr std::size_t DigitsOf64Bits = 16;

bool IsDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

bool IsWellSpelt(std::string_view name) {
  return name.starts_with(Prefix) && name.size() > Prefix.size() &&
         std::ranges::all_of(name.substr(Prefix.size()), IsDigit);
}

std::string_view DigitsOf(std::string_view wellSpelt) {
  return wellSpelt.substr(Prefix.size());
}

bool HasLeadingZero(std::string_view wellSpelt) {
  return DigitsOf(wellSpelt).size() > 1 && DigitsOf(wellSpelt).front() == '0';
}

std::string WithoutZeros(std::string_view wellSpelt) {
  auto digits = DigitsOf(wellSpelt);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size() - 1));
  return std::string(Prefix).append(digits);
}

char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// The digit that the character is or is often mistaken for; 0 when there is none.
char DigitMeant(char c) {
  c = Upper(c);
  if (c == 'O') return '0';
  if (c == 'I' || c == 'L') return '1';
  return IsDigit(c) ? c : '\0';
}

// The offset after the last "Zed" of any letter case and a separator; npos when there is none.
std::size_t EndOfPrefix(std::string_view name) {
  std::string upper(name);
  std::ranges::transform(upper, upper.begin(), Upper);
  const auto start = upper.rfind("ZED");
  if (start == std::string::npos) return start;
  const auto end = start + 3;
  return std::min(name.size(), std::max(end, name.find_first_not_of("-_ .", end)));
}

// The well-spelt name that may be meant; empty when there is none. Without "Zed" the whole name has
// to be digits.
std::string NameMeant(std::string_view name) {
  const auto end = EndOfPrefix(name);
  const bool hasPrefix = end != std::string_view::npos;
  auto rest = hasPrefix ? name.substr(end) : name;
  rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(' ')));
  std::string meant(Prefix);
  while (!rest.empty() && DigitMeant(rest.front()) != '\0') {
    meant += DigitMeant(rest.front());
    rest.remove_prefix(1);
  }
  const bool isWhole = rest.find_first_not_of(' ') == std::string_view::npos;
  const bool hasNumber = name.find_first_of("0123456789") != std::string_view::npos;
  if (meant.size() == Prefix.size() || (!hasPrefix && !(isWhole && hasNumber))) return "";
  return meant;
}

}  // namespace

bool IsNoBoard(std::string_view directory) {
  constexpr std::string_view Names[] = {".git", ".svn",           ".hg",          ".bzr", ".jj",
                                        "CVS",  "RidgeFlash.efi", "PortFlash.efi"};
  return std::ranges::find(Names, directory) != std::end(Names);
}

BoardNames::BoardNames(std::vector<std::string> boards) : boards_(std::move(boards)) {
  for (const auto& board : boards_) {
    if (IsWellSpelt(board) && !HasLeadingZero(board)) lengths_.insert(board.size());
  }
  for (const auto& board : boards_) {
    if (!Problem(board)) firstOfNumber_.emplace(WithoutZeros(board), board);
  }
}

std::optional<std::string> BoardNames::Problem(const std::string& board) const {
  if (!IsWellSpelt(board)) {
    return "a board identifier is \"Zed-\" and upper-case hexadecimal digits" +
           Suggestion(NameMeant(board));
  }
  // Other boards whose identifiers are of the same length show that zeros fill it up.
  const bool areZerosUsual =
      DigitsOf(board).size() == DigitsOf64Bits || lengths_.contains(board.size());
  if (!HasLeadingZero(board) || areZerosUsual) return std::nullopt;
  return "leading zeros are part of the name, and boards have them only to reach a common length" +
         Suggestion(WithoutZeros(board));
}

std::string BoardNames::SameBefore(const std::string& board) const {
  const auto first = firstOfNumber_.find(WithoutZeros(board));
  return first == firstOfNumber_.end() || first->second == board ? "" : first->second;
}

std::string BoardNames::Suggestion(const std::string& meant) const {
  if (meant.empty()) return "";
  const bool isThere = std::ranges::binary_search(boards_, meant);
  return "; " + Quoted(meant) + (isThere ? " is there as well" : " may be meant");
}

bool LooksLikeBoard(std::string_view directory) {
  return EndOfPrefix(directory) != std::string_view::npos && !NameMeant(directory).empty();
}

}  // namespace fernwick::lab
