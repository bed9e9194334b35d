#include "lab/lint/subject.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace fernwick::lab {
namespace {

LocatedEntry Located(const DictionaryEntry& entry, const KeyLocation& location) {
  return {entry.key, &entry.value, location.offset, location.value.offset, &location.value};
}

// The locations of a dictionary's keys, sorted by key; those of one key in the order of the file.
std::vector<const KeyLocation*> SortedByKey(const ValueLocation& dictionary) {
  std::vector<const KeyLocation*> locations;
  for (const auto& entry : dictionary.entries) locations.push_back(&entry);
  std::ranges::stable_sort(locations, {},
                           [](const KeyLocation* location) { return location->key; });
  return locations;
}

// Some keys occur twice: each entry has the location of the last.
std::vector<LocatedEntry> LocatedAtLast(Dictionary dictionary, const ValueLocation& location) {
  const auto sorted = SortedByKey(location);
  std::vector<LocatedEntry> entries;
  for (const auto& entry : dictionary.Entries()) {
    const auto after = std::ranges::upper_bound(sorted, entry.key, {},
                                                [](const KeyLocation* p) { return p->key; });
    entries.push_back(Located(entry, **std::prev(after)));
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
                                   const ValueLocation* location, std::size_t offset) {
  return {type.type, type.entry.key, offset, LocatedEntries(values, location, offset)};
}

void AddPersonalities(LocatedType& type) {
  const auto& [key, value, keyOffset, valueOffset, location] = type.entry;
  if (HasSinglePersonality(type.type)) {
    const auto values = value->AsDictionary();
    if (!values) return;
    type.personalities.push_back(MakePersonality(type, *values, location, valueOffset));
    return;
  }
  const auto array = value->AsArray();
  if (!array) return;
  for (std::size_t i = 0; i < array->size(); ++i) {
    const auto values = (*array)[i].AsDictionary();
    if (!values) continue;
    const auto* element = location == nullptr ? nullptr : FindElement(*location, i);
    type.personalities.push_back(
        MakePersonality(type, *values, element, OffsetOfElement(type.entry, i)));
  }
}

}  // namespace

std::vector<LocatedEntry> LocatedEntries(Dictionary dictionary, const ValueLocation* location,
                                         std::size_t offset) {
  if (location == nullptr || location->entries.empty()) return LocatedAt(dictionary, offset);
  if (location->entries.size() != dictionary.Size()) return LocatedAtLast(dictionary, *location);
  std::vector<LocatedEntry> entries;
  entries.reserve(dictionary.Size());
  for (std::size_t i = 0; i < dictionary.Size(); ++i) {
    entries.push_back(Located(dictionary.Entries()[i], location->entries[i]));
  }
  return entries;
}

std::size_t OffsetOfElement(const LocatedEntry& array, std::size_t index) {
  const auto* element = array.location == nullptr ? nullptr : FindElement(*array.location, index);
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

bool HasSinglePersonality(TypeSet type) {
  return type == Types::LegacyUsbc;
}

}  // namespace fernwick::lab
