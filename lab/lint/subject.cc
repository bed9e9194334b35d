#include "lab/lint/subject.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace fernwick::lab {
namespace {

PlacedEntry Placed(const DictionaryEntry& entry, const KeyPlace& place) {
  return {entry.key.View(), &entry.value, place.offset, place.value.offset, &place.value};
}

// The places of a dictionary's keys, sorted by key; those of one key in the order of the file.
std::vector<const KeyPlace*> SortedByKey(const ValuePlace& dictionary) {
  std::vector<const KeyPlace*> places;
  for (const auto& entry : dictionary.entries) places.push_back(&entry);
  std::ranges::stable_sort(places, {}, [](const KeyPlace* place) { return place->key.View(); });
  return places;
}

// Some keys occur twice: each entry has the place of the last.
std::vector<PlacedEntry> PlacedAtLast(const Dictionary& dictionary, const ValuePlace& place) {
  const auto sorted = SortedByKey(place);
  std::vector<PlacedEntry> entries;
  for (const auto& entry : dictionary.Entries()) {
    const auto behind = std::ranges::upper_bound(sorted, entry.key.View(), {},
                                                 [](const KeyPlace* p) { return p->key.View(); });
    entries.push_back(Placed(entry, **std::prev(behind)));
  }
  return entries;
}

std::vector<PlacedEntry> PlacedAt(const Dictionary& dictionary, std::size_t offset) {
  std::vector<PlacedEntry> entries;
  for (const auto& [key, value] : dictionary.Entries()) {
    entries.push_back({key.View(), &value, offset, offset, nullptr});
  }
  return entries;
}

PlacedPersonality MakePersonality(const PlacedType& type, const Personality& values,
                                  const ValuePlace* place, std::size_t offset) {
  return {type.type, type.entry.key, offset, &values, PlacedEntries(values, place, offset)};
}

void AddPersonalities(PlacedType& type) {
  const auto& [key, value, keyOffset, valueOffset, place] = type.entry;
  if (HoldsSinglePersonality(type.type)) {
    const auto* values = value->AsDictionary();
    if (values == nullptr) return;
    type.personalities.push_back(MakePersonality(type, *values, place, valueOffset));
    return;
  }
  const auto* array = value->AsArray();
  if (array == nullptr) return;
  for (std::size_t i = 0; i < array->size(); ++i) {
    const auto* values = (*array)[i].AsDictionary();
    if (values == nullptr) continue;
    const auto* element = place == nullptr ? nullptr : FindElement(*place, i);
    type.personalities.push_back(
        MakePersonality(type, *values, element, OffsetOfElement(type.entry, i)));
  }
}

}  // namespace

std::vector<PlacedEntry> PlacedEntries(const Dictionary& dictionary, const ValuePlace* place,
                                       std::size_t offset) {
  if (place == nullptr || place->entries.empty()) return PlacedAt(dictionary, offset);
  if (place->entries.size() != dictionary.Size()) return PlacedAtLast(dictionary, *place);
  std::vector<PlacedEntry> entries;
  entries.reserve(dictionary.Size());
  for (std::size_t i = 0; i < dictionary.Size(); ++i) {
    entries.push_back(Placed(dictionary.Entries()[i], place->entries[i]));
  }
  return entries;
}

std::size_t OffsetOfElement(const PlacedEntry& array, std::size_t index) {
  const auto* element = array.place == nullptr ? nullptr : FindElement(*array.place, index);
  return element == nullptr ? array.valueOffset : element->offset;
}

const PlacedEntry* PlacedPersonality::Find(std::string_view key) const {
  const auto entry = std::ranges::find(entries, key, &PlacedEntry::key);
  return entry == entries.end() ? nullptr : &*entry;
}

LintSubject::LintSubject(const ConfigurationFile& configuration) : file(configuration) {
  const auto* top = file.Value().AsDictionary();
  if (top == nullptr) return;
  entries = PlacedEntries(*top, &file.Root(), file.Root().offset);
  for (const auto& entry : entries) {
    const auto type = TypeNamed(entry.key);
    if (type == Types::None) continue;
    AddPersonalities(types.emplace_back(PlacedType{entry, type, {}}));
  }
}

bool HoldsSinglePersonality(TypeSet type) {
  return type == Types::LegacyUsbc;
}

}  // namespace fernwick::lab
