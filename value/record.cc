#include "value/record.h"

#include <algorithm>

namespace fernwick {

Record::Record(std::initializer_list<DictionaryEntry> entries) : entries_(entries) {
  entries_.resize(WithoutRepeatedKeys(entries_).size());
}

Record::Record(Dictionary dictionary)
    : entries_(dictionary.Entries().begin(), dictionary.Entries().end()) {}

void Record::Set(std::string_view key, PropertyValue value) {
  const auto entry = std::ranges::find(entries_, key, &DictionaryEntry::key);
  if (entry == entries_.end()) {
    entries_.push_back({key, value});
  } else {
    entry->value = value;
  }
}

void Record::SetOrRemove(std::string_view key, const PropertyValue* value) {
  if (value != nullptr) return Set(key, *value);
  std::erase_if(entries_, [&](const auto& entry) { return entry.key == key; });
}

void Record::Merge(Dictionary other) {
  if (other.Size() <= FewEntries) {
    for (const auto& [key, value] : other.Entries()) Set(key, value);
    return;
  }
  entries_.insert(entries_.end(), other.Entries().begin(), other.Entries().end());
  entries_.resize(WithoutRepeatedKeys(entries_).size());
}

}  // namespace fernwick
