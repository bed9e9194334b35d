// Finds identifiers in texts.
//
// Known ones: a search in a sorted array of their spellings, at each character of a text. The first
// eight bytes, which every spelling has, are looked up as a number; where there are spellings that
// begin so, a binary search finds the last one that is not above the rest of the text. Every
// spelling that the rest begins with is that one or a prefix of it, to which each spelling has a
// link. What agrees in MaxComparedLength characters counts as found, so no character costs more
// comparisons than that many, and what agrees further is passed over: n log m for a text of n
// characters.
//
// Unknown ones: one pass over a name that tries each form at the start of each run of letters and
// digits.

#include "lab/recordings/identifiers.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <iterator>

#include "lab/support/spelling.h"
#include "value/number_text.h"
#include "value/unicode/ascii.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MinIdentifierLength = 8;
constexpr std::size_t MaxComparedLength = 64;
constexpr std::size_t MinHexadecimalLength = 12;

bool IsLetterOrDigit(char c) {
  const char lower = ToLowerAscii(c);
  return (lower >= 'a' && lower <= 'z') || IsDecimalDigit(c);
}

bool IsHexadecimalDigit(char c) {
  return HexDigitValue(c) >= 0;
}

std::string LettersAndDigits(std::string_view key) {
  std::string plain;
  for (const char c : key) {
    if (IsLetterOrDigit(c)) plain.push_back(ToLowerAscii(c));
  }
  return plain;
}

std::string Hexadecimal(std::string_view bytes, std::string_view separator) {
  std::string text;
  for (const char byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text.append(text.empty() ? "" : separator).append(digits);
  }
  return text;
}

// How many hexadecimal digits the text begins with.
std::size_t DigitCount(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, IsHexadecimalDigit) -
                                  text.begin());
}

// The length of groups of so many hexadecimal digits with a separator between them, which the text
// begins with; 0 when it does not.
std::size_t GroupsLength(std::string_view text, std::initializer_list<std::size_t> groups,
                         char separator) {
  std::size_t length = 0;
  for (const auto digits : groups) {
    if (length != 0 && (length >= text.size() || text[length++] != separator)) return 0;
    if (DigitCount(text.substr(length)) != digits) return 0;
    length += digits;
  }
  return length;
}

// The length of the identifier that the text begins with, by its form; 0 when there is none.
std::size_t FormLength(std::string_view text) {
  if (const auto uuid = GroupsLength(text, {8, 4, 4, 4, 12}, '-')) return uuid;
  for (const char separator : {':', '-'}) {
    if (const auto address = GroupsLength(text, {2, 2, 2, 2, 2, 2}, separator)) return address;
  }
  const std::size_t prefix = LowerCase(text.substr(0, 2)) == "0x" ? 2 : 0;
  const auto digits = text.substr(prefix, DigitCount(text.substr(prefix)));
  const bool isNumber =
      digits.size() >= MinHexadecimalLength && std::ranges::any_of(digits, IsDecimalDigit);
  return isNumber ? prefix + digits.size() : 0;
}

// The first bytes of the text as a number that is ordered as they are. REQUIRES: there are eight.
std::uint64_t StartOf(std::string_view text) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < MinIdentifierLength; ++i) {
    number = number << 8 | static_cast<unsigned char>(text[i]);
  }
  return number;
}

// How many characters both begin with.
std::size_t CommonLength(std::string_view a, std::string_view b) {
  return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

}  // namespace

bool IdentifiesComputer(std::string_view key) {
  const auto plain = LettersAndDigits(key);
  if (plain == "serial" || plain.ends_with("uid")) return true;  // "uuid" too
  for (const std::string_view part : {"uniqueid", "serialnumber", "macaddress"}) {
    if (plain.find(part) != std::string::npos) return true;
  }
  return false;
}

void Identifiers::Add(const PropertyValue& value) {
  if (const auto array = value.AsArray()) {
    for (const auto& element : *array) Add(element);
  } else if (const auto dictionary = value.AsDictionary()) {
    for (const auto& entry : dictionary->Entries()) Add(entry.value);
  } else if (const auto text = value.AsString()) {
    AddSpelling(*text);
  } else if (const auto bytes = value.AsData()) {
    AddBytes(*bytes);
  } else if (const auto integer = value.AsInteger()) {
    char hexadecimal[17];
    std::snprintf(hexadecimal, sizeof hexadecimal, "%" PRIx64, integer->Bits());
    AddSpelling(hexadecimal);
    AddSpelling(FormatInteger(*integer));
  }
}

void Identifiers::AddBytes(std::string_view bytes) {
  for (const char* separator : {"", ":", "-"}) AddSpelling(Hexadecimal(bytes, separator));
  const auto text = bytes.substr(0, bytes.find('\0'));
  const auto isPrintable = [](char c) { return c > ' ' && c <= '~'; };
  if (std::ranges::all_of(text, isPrintable)) AddSpelling(text);
}

void Identifiers::AddSpelling(std::string_view text) {
  if (text.size() < MinIdentifierLength) return;
  const auto original = arena_.Copy(text);
  const auto lower = LowerCase(text);
  spellings_.push_back({lower == text ? original : arena_.Copy(lower), original});
  isSorted_ = false;
}

// Each text once, with the original that came first.
void Identifiers::Sort() {
  if (isSorted_) return;
  isSorted_ = true;
  std::ranges::stable_sort(spellings_, {}, &Spelling::text);
  const auto areEqual = [](const Spelling& a, const Spelling& b) { return a.text == b.text; };
  spellings_.erase(std::unique(spellings_.begin(), spellings_.end(), areEqual), spellings_.end());
  starts_.clear();
  for (const auto& spelling : spellings_) starts_.push_back(StartOf(spelling.text));
  LinkPrefixes();
}

// The prefixes of a spelling come before it, and the one before it begins with all of them: they
// are found by following the links of that one. A spelling is passed over by at most one such walk.
void Identifiers::LinkPrefixes() {
  for (std::size_t i = 0; i < spellings_.size(); ++i) {
    auto& spelling = spellings_[i];
    spelling.prefix = i;
    for (auto other = i == 0 ? i : i - 1; other != i;) {
      if (spelling.text.starts_with(spellings_[other].text)) {
        spelling.prefix = other;
        break;
      }
      const auto next = spellings_[other].prefix;
      other = next == other ? i : next;
    }
  }
}

Identifiers::Found Identifiers::FindAtStart(std::string_view text) const {
  const auto [begin, end] = std::equal_range(starts_.begin(), starts_.end(), StartOf(text));
  if (begin == end) return {};
  const auto first = spellings_.begin() + (begin - starts_.begin());
  const auto last = first + (end - begin);
  const auto above = std::ranges::upper_bound(first, last, text, {}, &Spelling::text);
  const auto lengthAbove = above == last ? 0 : CommonLength(above->text, text);
  const auto lengthBelow = above == first ? 0 : CommonLength(std::prev(above)->text, text);
  if (std::max(lengthAbove, lengthBelow) >= MaxComparedLength) {
    if (lengthAbove > lengthBelow) return {lengthAbove, nullptr};
    const auto& below = *std::prev(above);
    return {lengthBelow, lengthBelow == below.text.size() ? &below : nullptr};
  }
  if (above == first) return {};
  const auto* spelling = &*std::prev(above);
  while (spelling->text.size() > lengthBelow) {
    const auto* prefix = &spellings_[spelling->prefix];
    if (prefix == spelling) return {};
    spelling = prefix;
  }
  return {spelling->text.size(), spelling};
}

std::optional<std::string> Identifiers::Replaced(std::string_view bytes, Pseudonyms& pseudonyms) {
  Sort();
  if (spellings_.empty() || bytes.size() < MinIdentifierLength) return std::nullopt;
  const auto lower = LowerCase(bytes);
  std::string replaced;
  std::size_t copied = 0;
  for (std::size_t i = 0; i + MinIdentifierLength <= lower.size();) {
    const auto rest = std::string_view(lower).substr(i);
    const auto [length, whole] = FindAtStart(rest);
    if (length == 0) {
      ++i;
      continue;
    }
    replaced += bytes.substr(copied, i - copied);
    replaced += pseudonyms.OfText(whole != nullptr ? whole->original : rest.substr(0, length));
    i += length;
    copied = i;
  }
  if (copied == 0) return std::nullopt;
  return replaced.append(bytes.substr(copied));
}

std::optional<std::string> ReplaceIdentifierForms(std::string_view name, Pseudonyms& pseudonyms) {
  std::string replaced;
  bool isChanged = false;
  for (std::size_t i = 0; i < name.size();) {
    const bool isStart = i == 0 || !IsLetterOrDigit(name[i - 1]);
    auto length = isStart ? FormLength(name.substr(i)) : 0;
    if (i + length < name.size() && IsLetterOrDigit(name[i + length])) length = 0;
    if (length == 0) {
      replaced.push_back(name[i++]);
      continue;
    }
    replaced += pseudonyms.OfText(LowerCase(name.substr(i, length)));
    i += length;
    isChanged = true;
  }
  if (!isChanged) return std::nullopt;
  return replaced;
}

}  // namespace fernwick::lab
