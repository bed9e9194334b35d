#include "lab/recordings/identifiers.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "value/number_text.h"
#include "value/unicode/ascii.h"

// Finds identifiers in texts. Known ones: each of the n spellings is searched for in each text, O(n
// * length); a recording has a few dozen. Unknown ones: one pass over a name that tries each form
// at the start of each run of letters and digits.

namespace fernwick::lab {
namespace {

constexpr std::size_t MinIdentifierLength = 8;
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

std::string Lower(std::string_view text) {
  std::string lower;
  for (const char c : text) lower.push_back(ToLowerAscii(c));
  return lower;
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

// Of an identifier that the text begins with, by its form; 0 when there is none.
std::size_t FormLength(std::string_view text) {
  if (const auto uuid = GroupsLength(text, {8, 4, 4, 4, 12}, '-')) return uuid;
  for (const char separator : {':', '-'}) {
    if (const auto address = GroupsLength(text, {2, 2, 2, 2, 2, 2}, separator)) return address;
  }
  const std::size_t prefix = Lower(text.substr(0, 2)) == "0x" ? 2 : 0;
  const auto digits = text.substr(prefix, DigitCount(text.substr(prefix)));
  const bool isNumber =
      digits.size() >= MinHexadecimalLength && std::ranges::any_of(digits, IsDecimalDigit);
  return isNumber ? prefix + digits.size() : 0;
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
  Spelling spelling = {Lower(text), std::string(text)};
  const auto order = [](const Spelling& a, const Spelling& b) {
    return a.text.size() != b.text.size() ? a.text.size() > b.text.size() : a.text < b.text;
  };
  const auto next = std::ranges::lower_bound(spellings_, spelling, order);
  if (next != spellings_.end() && next->text == spelling.text) return;
  spellings_.insert(next, std::move(spelling));
}

std::optional<std::string> Identifiers::Replaced(std::string_view bytes,
                                                 Pseudonyms& pseudonyms) const {
  auto replaced = std::string(bytes);
  auto lower = Lower(bytes);  // changes with `replaced`
  bool isChanged = false;
  for (const auto& [text, original] : spellings_) {
    auto at = lower.find(text);
    if (at == std::string::npos) continue;
    const auto pseudonym = pseudonyms.OfText(original);
    for (; at != std::string::npos; at = lower.find(text, at + pseudonym.size())) {
      lower.replace(at, text.size(), pseudonym);
      replaced.replace(at, text.size(), pseudonym);
    }
    isChanged = true;
  }
  if (!isChanged) return std::nullopt;
  return replaced;
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
    replaced += pseudonyms.OfText(Lower(name.substr(i, length)));
    i += length;
    isChanged = true;
  }
  if (!isChanged) return std::nullopt;
  return replaced;
}

}  // namespace fernwick::lab
