#include "lab/recordings/pseudonyms.h"

#include <algorithm>
#include <cmath>

#include "lab/recordings/rebuilt.h"
#include "value/number_text.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

// The number of the key, in the order in which keys are first asked for, from 1.
template <typename Counts, typename Key>
std::uint64_t NumberOf(Counts& counts, const Key& key) {
  const auto known = counts.find(key);
  if (known != counts.end()) return known->second;
  return counts.emplace(key, counts.size() + 1).first->second;
}

bool IsPunctuation(char32_t character) {
  if (character >= 0x80) return false;
  const auto c = static_cast<char>(character);
  const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return !isLetter && !(c >= '0' && c <= '9');
}

// The text with each letter and digit a 0. REQUIRES: well-formed UTF-8.
std::string Blanked(std::string_view text) {
  std::string blanked;
  while (!text.empty()) {
    const auto [character, length] = DecodeUtf8(text);
    blanked.push_back(IsPunctuation(character) ? static_cast<char>(character) : '0');
    text.remove_prefix(length);
  }
  return blanked;
}

// The exact value of a finite number, the same for the integer 5 and the real 5.0.
std::string ExactText(const Number& number) {
  if (const auto* integer = std::get_if<Integer>(&number)) return FormatInteger(*integer);
  const double real = std::get<double>(number);
  const bool isInteger = real == std::trunc(real) && real >= -0x1p63 && real < 0x1p64;
  if (!isInteger) return FormatReal(real);
  return real < 0 ? FormatInteger(static_cast<std::int64_t>(real))
                  : FormatInteger(static_cast<std::uint64_t>(real));
}

}  // namespace

bool MayIdentify(const PropertyValue& value) {
  if (const auto text = value.AsString()) return !text->empty();
  if (const auto bytes = value.AsData()) return !bytes->empty();
  if (const auto real = value.AsReal()) return std::isfinite(*real);
  if (const auto array = value.AsArray()) return std::ranges::any_of(*array, MayIdentify);
  if (const auto dictionary = value.AsDictionary()) {
    return std::ranges::any_of(dictionary->Entries(), MayIdentify, &DictionaryEntry::value);
  }
  return value.AsInteger().has_value();
}

PropertyValue Pseudonyms::Of(const PropertyValue& value, Arena& arena) {
  if (const auto text = value.AsString()) return arena.Copy(OfText(*text));
  if (const auto bytes = value.AsData()) return Data{arena.Copy(OfBytes(*bytes))};
  if (const auto integer = value.AsInteger()) return OfNumber(*integer);
  if (const auto real = value.AsReal(); real && MayIdentify(value)) {
    return static_cast<double>(OfNumber(*real));
  }
  const auto inner = [&](std::string_view, const PropertyValue& each) { return Of(each, arena); };
  return Rebuilt(value, arena, inner);
}

// The digits of the count replace the last letters and digits of the text; those that do not fit
// are put before it.
std::string Pseudonyms::OfText(std::string_view text) {
  if (text.empty()) return {};
  auto digits = std::to_string(NumberOf(texts_, text));
  auto pseudonym = Blanked(text);
  for (auto at = pseudonym.rbegin(); at != pseudonym.rend() && !digits.empty(); ++at) {
    if (*at != '0') continue;
    *at = digits.back();
    digits.pop_back();
  }
  return digits + pseudonym;
}

std::string Pseudonyms::OfBytes(std::string_view bytes) {
  if (bytes.empty()) return {};
  std::string pseudonym;
  for (auto count = NumberOf(bytes_, bytes); count != 0; count >>= 8) {
    pseudonym.insert(pseudonym.begin(), static_cast<char>(count));
  }
  if (pseudonym.size() < bytes.size()) pseudonym.insert(0, bytes.size() - pseudonym.size(), '\0');
  return pseudonym;
}

std::uint64_t Pseudonyms::OfNumber(const Number& number) {
  return NumberOf(numbers_, ExactText(number)) << 4 | (ToUnsigned64(number) & 0xF);
}

}  // namespace fernwick::lab
