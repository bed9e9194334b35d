#include "lab/lint/subject.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace fernwick::lab {
namespace {

LocatedEntry Located(const DictionaryEntry& entry, const KeyLocation& place) {
  return {entry.key, &entry.value, place.offset, place.value.offset, &place.value};
}

// The places of a dictionary's keys, sorted by key; those of one key in the order of the file.
std::vector<const KeyLocation*> SortedByKey(const ValueLocation& dictionary) {
  std::vector<const KeyLocation*> places;
  for (const auto& entry : dictionary.entries) places.push_back(&entry);
  std::ranges::stable_sort(places, {}, [](const KeyLocation* place) { return place->key; });
  return places;
}

// Some keys occur twice: each entry has the place of the last.
std::vector<LocatedEntry> LocatedAtLast(Dictionary dictionary, const ValueLocation& place) {
  const auto sorted = SortedByKey(place);
  std::vector<LocatedEntry> entries;
  for (const auto& entry : dictionary.Entries()) {
    const auto behind = std::ranges::upper_bound(sorted, entry.key, {},
                                                 [](const KeyLocation* p) { return p->key; });
    entries.push_back(Located(entry, **std::prev(behind)));
  }
  return entries;
}

std::vector<LocatedEntry> LocatedAt(Dictionary dictionary, std::size_t offset) {
  std::vector<LocatedEntry> entries;
  for (const auto& [key, value] : dictionary.Entries()) {
    entries.push_back({key, &value, offset, offset, nullptr});
  }
  return entries;
}

LocatedPersonality MakePersonality(const LocatedType& type, Personality values,
                                   const ValueLocation* place, std::size_t offset) {
  return {type.type, type.entry.key, offset, LocatedEntries(values, place, offset)};
}

void AddPersonalities(LocatedType& type) {
  const auto& [key, value, keyOffset, valueOffset, place] = type.entry;
  if (HoldsSinglePersonality(type.type)) {
    const auto values = value->AsDictionary();
    if (!values) return;
    type.personalities.push_back(MakePersonality(type, *values, place, valueOffset));
    return;
  }
  const auto array = value->AsArray();
  if (!array) return;
  for (std::size_t i = 0; i < array->size(); ++i) {
    const auto values = (*array)[i].AsDictionary();
    if (!values) continue;
    const auto* element = place == nullptr ? nullptr : FindElement(*place, i);
    type.personalities.push_back(
        MakePersonality(type, *values, element, OffsetOfElement(type.entry, i)));
  }
}

}  // namespace

std::vector<LocatedEntry> LocatedEntries(Dictionary dictionary, const ValueLocation* place,
                                         std::size_t offset) {
  if (place == nullptr || place->entries.empty()) return LocatedAt(dictionary, offset);
  if (place->entries.size() != dictionary.Size()) return LocatedAtLast(dictionary, *place);
  std::vector<LocatedEntry> entries;
  entries.reserve(dictionary.Size());
  for (std::size_t i = 0; i < dictionary.Size(); ++i) {
    entries.push_back(Located(dictionary.Entries()[i], place->entries[i]));
  }
  return entries;
}

std::size_t OffsetOfElement(const LocatedEntry& array, std::size_t index) {
  const auto* element = array.place == nullptr ? nullptr : FindElement(*array.place, index);
  return element == nullptr ? array.valueOffset : element->offset;
}

const LocatedEntry* LocatedPersonality::Find(std::string_view key) const {
  const auto entry = std::ranges::find(entries, key, &LocatedEntry::key);
  return entry == entries.end() ? nullptr : &*entry;
}

LintSubject::LintSubject(const ConfigurationFile& configuration) : file(configuration) {
  const auto top = file.Value().AsDictionary();
  if (!top) return;
  entries = LocatedEntries(*top, &file.Root(), file.Root().offset);
  for (const auto& entry : entries) {
    const auto type = TypeNamed(entry.key);
    if (type == Types::None) continue;
    AddPersonalities(types.emplace_back(LocatedType{entry, type, {}}));
  }
}

bool HoldsSinglePersonality(TypeSet type) {
  return type == Types::LegacyUsbc;
}

}  // namespace fernwick::lab
