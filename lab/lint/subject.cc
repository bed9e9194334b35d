#include "lab/lint/subject.h"

#include <algorithm>
#include <utility>

namespace fernwick::lab {
namespace {

LocatedEntry Located(const DictionaryEntry& entry, const KeyLocation& location) {
  return {entry.key, &entry.value, location.offset, location.value.offset, &location.value};
}

// The locations of a dictionary's keys, sorted by key; those of one key in the order of the file.
std::vector<const KeyLocation*> SortedByKey(const ValueLocation& dictionary) {
  std::vector<const KeyLocation*> locations;
  for (const auto& entry : dictionary.Entries()) locations.push_back(&entry);
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

LocatedPersonality MakePersonality(const LocatedType& type, Personality values,
                                   const ValueLocation& location) {
  return {type.type, type.entry.key, location.offset, LocatedEntries(values, location)};
}

void AddPersonalities(LocatedType& type) {
  const auto& value = *type.entry.value;
  const auto& location = *type.entry.location;
  if (HasSinglePersonality(type.type)) {
    const auto values = value.AsDictionary();
    if (values) type.personalities.push_back(MakePersonality(type, *values, location));
    return;
  }
  const auto array = value.AsArray();
  if (!array) return;
  type.personalities.reserve(array->size());
  for (std::size_t i = 0; i < array->size(); ++i) {
    const auto values = (*array)[i].AsDictionary();
    if (values)
      type.personalities.push_back(MakePersonality(type, *values, location.Elements()[i]));
  }
}

}  // namespace

std::vector<LocatedEntry> LocatedEntries(Dictionary dictionary, const ValueLocation& location) {
  if (location.Entries().size() != dictionary.Size()) return LocatedAtLast(dictionary, location);
  std::vector<LocatedEntry> entries;
  entries.reserve(dictionary.Size());
  for (std::size_t i = 0; i < dictionary.Size(); ++i) {
    entries.push_back(Located(dictionary.Entries()[i], location.Entries()[i]));
  }
  return entries;
}

std::size_t OffsetOfElement(const LocatedEntry& array, std::size_t index) {
  return array.location->Elements()[index].offset;
}

const LocatedEntry* LocatedPersonality::Find(std::string_view key) const {
  const auto entry = std::ranges::find(entries, key, &LocatedEntry::key);
  return entry == entries.end() ? nullptr : &*entry;
}

const PropertyValue* LocatedPersonality::Value(std::string_view key) const {
  const auto* entry = Find(key);
  return entry == nullptr ? nullptr : entry->value;
}

LintSubject::LintSubject(const ConfigurationFile& configuration) : file(configuration) {
  const auto top = file.Value().AsDictionary();
  if (!top) return;
  entries = LocatedEntries(*top, file.Root());
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
