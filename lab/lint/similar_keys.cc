// Comparison of keys as sets of words. A key is split at blanks, punctuation and changes from lower
// to upper case; abbreviations are written out. One set has to contain the other. Linear in the
// number of known keys.

#include <algorithm>
#include <set>
#include <span>
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

// How many keys have the word.
std::size_t CountKeysWith(const std::string& word) {
  return static_cast<std::size_t>(std::ranges::count_if(
      KeySchema(), [&](const Key& key) { return WordsOf(key.name).contains(word); }));
}

// A single word points to a key when no other key has it. "Name" and the like are comments.
bool IsTelling(const Words& words) {
  if (words.size() > 1) return true;
  const auto& word = *words.begin();
  return word != "name" && word != "firmware" && CountKeysWith(word) == 1;
}

// Less is more similar; npos: not similar.
std::size_t WordDistance(const Words& words, const Key& key) {
  const auto known = WordsOf(key.name);
  if (Contains(known, words) && IsTelling(words)) return known.size() - words.size();
  if (Contains(words, known) && known.size() > 1) return words.size() - known.size();
  return std::string_view::npos;
}

bool IsPropertyOf(std::string_view name, const Key& key) {
  return name == key.port.property || name == key.thunderbolt.property;
}

std::string_view SimilarAmong(std::string_view name, std::span<const Key* const> keys) {
  const auto words = WordsOf(name);
  if (words.empty() || keys.empty()) return "";
  const auto distance = [&](const Key* key) { return WordDistance(words, *key); };
  const auto nearest = std::ranges::min_element(keys, {}, distance);
  if (distance(*nearest) != std::string_view::npos) return (*nearest)->name;
  const auto property =
      std::ranges::find_if(keys, [&](const Key* key) { return IsPropertyOf(name, *key); });
  return property == keys.end() ? "" : (*property)->name;
}

}  // namespace

std::string_view SimilarKey(std::string_view key, TypeSet type) {
  std::vector<const Key*> ofType;
  std::vector<const Key*> ofOthers;
  for (const auto& known : KeySchema()) {
    if (known.kind == KeyKind::NotRead) continue;
    const bool isRead = ((known.checkedBy | known.plannedBy) & type) != 0;
    (isRead ? ofType : ofOthers).push_back(&known);
  }
  const auto similar = SimilarAmong(key, ofType);
  return similar.empty() ? SimilarAmong(key, ofOthers) : similar;
}

}  // namespace fernwick::lab
