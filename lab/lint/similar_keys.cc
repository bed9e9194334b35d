// Comparison of keys as sets of words. A key is split at blanks, punctuation and changes from lower
// to upper case; abbreviations are written out. One set has to contain the other. Linear in the
// number of known keys.

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lab/lint/checks.h"

namespace fernwick::lab {
namespace {

using Words = std::set<std::string>;

constexpr std::pair<std::string_view, std::string_view> WrittenOut[] = {
    {"minimum", "min"},        {"lowest", "min"},       {"maximum", "max"},
    {"highest", "max"},        {"rev", "revision"},     {"revs", "revision"},
    {"revisions", "revision"}, {"ver", "version"},      {"vers", "version"},
    {"versions", "version"},   {"dev", "device"},       {"addr", "address"},
    {"addresses", "address"},  {"identifier", "id"},    {"ids", "id"},
    {"fw", "firmware"},        {"uuids", "uuid"},       {"uids", "uid"},
    {"rids", "rid"},           {"current", "existing"}, {"installed", "existing"},
    {"thunderbolt", "ridge"},
};

bool IsUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

bool IsLower(char c) {
  return c >= 'a' && c <= 'z';
}

bool IsWordCharacter(char c) {
  return IsUpper(c) || IsLower(c) || (c >= '0' && c <= '9');
}

void AddWord(Words& words, std::string& word) {
  if (word.empty()) return;
  const auto* entry =
      std::ranges::find(WrittenOut, word, [](const auto& pair) { return pair.first; });
  words.insert(entry == std::end(WrittenOut) ? word : std::string(entry->second));
  word.clear();
}

Words WordsOf(std::string_view key) {
  Words words;
  std::string word;
  char before = ' ';
  for (const char c : key) {
    if (!IsWordCharacter(c) || (IsUpper(c) && IsLower(before))) AddWord(words, word);
    if (IsWordCharacter(c)) word += IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
    before = c;
  }
  AddWord(words, word);
  return words;
}

bool Contains(const Words& all, const Words& some) {
  return std::ranges::includes(all, some);
}

struct KnownKey {
  const Key* key;
  Words words;
};

const std::vector<KnownKey>& KnownKeys() {
  static const std::vector<KnownKey> known = [] {
    std::vector<KnownKey> all;
    for (const auto& key : KeySchema()) all.push_back({&key, WordsOf(key.name)});
    return all;
  }();
  return known;
}

// A single word points to a key when no other key has it. "Name" and the like are comments.
bool IsSpecific(const Words& words) {
  if (words.size() > 1) return true;
  const auto& word = *words.begin();
  const auto hasWord = [&](const KnownKey& known) { return known.words.contains(word); };
  return word != "name" && word != "firmware" && std::ranges::count_if(KnownKeys(), hasWord) == 1;
}

// Less is more similar; npos: not similar.
std::size_t WordDistance(const Words& words, const Words& known) {
  if (Contains(known, words) && IsSpecific(words)) return known.size() - words.size();
  if (Contains(words, known) && known.size() > 1) return words.size() - known.size();
  return std::string_view::npos;
}

bool IsPropertyOf(std::string_view name, const Key& key) {
  return name == key.port.property || name == key.thunderbolt.property;
}

// Among the keys that the type reads, or among the others.
std::string_view SimilarAmong(std::string_view name, const Words& words, TypeSet type,
                              bool isReadByType) {
  std::string_view similar;
  std::string_view origin;
  auto minDistance = std::string_view::npos;
  for (const auto& [key, known] : KnownKeys()) {
    const bool isRead = ((key->checkedBy | key->plannedBy) & type) != 0;
    if (key->kind == KeyKind::NotRead || isRead != isReadByType) continue;
    const auto distance = WordDistance(words, known);
    if (distance < minDistance) similar = key->name;
    minDistance = std::min(minDistance, distance);
    if (origin.empty() && IsPropertyOf(name, *key)) origin = key->name;
  }
  return similar.empty() ? origin : similar;
}

}  // namespace

bool IsRegistryProperty(std::string_view key) {
  constexpr std::string_view Others[] = {"Depth", "Route String", "EEPROM Revision"};
  const auto isOf = [&](const Key& known) { return IsPropertyOf(key, known); };
  return std::ranges::find(Others, key) != std::end(Others) ||
         (!key.empty() && std::ranges::any_of(KeySchema(), isOf));
}

std::string_view SimilarKey(std::string_view key, TypeSet type) {
  const auto words = WordsOf(key);
  if (words.empty()) return "";
  const auto similar = SimilarAmong(key, words, type, true);
  return similar.empty() ? SimilarAmong(key, words, type, false) : similar;
}

}  // namespace fernwick::lab
