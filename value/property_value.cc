#include "value/property_value.h"

#include <algorithm>
#include <numeric>

namespace fernwick {
namespace {

// Up to here comparing every key with every other costs less than sorting them.
constexpr std::size_t FewEntries = 16;

bool HasRepeatedKeyAmongFew(std::span<const DictionaryEntry> entries) {
  for (std::size_t i = 1; i < entries.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (entries[i].key == entries[j].key) return true;
    }
  }
  return false;
}

// The places of the entries, by key; the places of one key in their own order.
std::vector<std::size_t> PlacesByKey(std::span<const DictionaryEntry> entries) {
  std::vector<std::size_t> places(entries.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
    return entries[a].key.View() < entries[b].key.View();
  });
  return places;
}

// Folds the entries of one key into the first of them. Sorted, not compared pairwise: a file
// decides how many keys there are.
void FoldRepeatedKeys(std::vector<DictionaryEntry>& entries) {
  const auto places = PlacesByKey(entries);
  std::vector<bool> folded(entries.size());
  for (std::size_t first = 0; first < places.size();) {
    std::size_t next = first + 1;
    while (next < places.size() && entries[places[next]].key == entries[places[first]].key) {
      folded[places[next++]] = true;
    }
    if (next > first + 1) {
      entries[places[first]].value = std::move(entries[places[next - 1]].value);
    }
    first = next;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (folded[i]) continue;
    if (kept != i) entries[kept] = std::move(entries[i]);
    ++kept;
  }
  entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(kept), entries.end());
}

}  // namespace

Dictionary::Dictionary(std::initializer_list<DictionaryEntry> entries)
    : Dictionary(std::vector<DictionaryEntry>(entries)) {}

Dictionary::Dictionary(std::vector<DictionaryEntry> entries) : entries_(std::move(entries)) {
  if (entries_.size() <= FewEntries && !HasRepeatedKeyAmongFew(entries_)) return;
  FoldRepeatedKeys(entries_);
}

const PropertyValue* Dictionary::Find(std::string_view key) const {
  for (const auto& entry : entries_) {
    if (entry.key.View() == key) return &entry.value;
  }
  return nullptr;
}

void Dictionary::Set(std::string_view key, PropertyValue value) {
  const auto entry =
      std::ranges::find_if(entries_, [&](const auto& e) { return e.key.View() == key; });
  if (entry == entries_.end()) {
    entries_.emplace_back(key, std::move(value));
  } else {
    entry->value = std::move(value);
  }
}

void Dictionary::SetOrRemove(std::string_view key, const PropertyValue* value) {
  if (value != nullptr) return Set(key, *value);
  std::erase_if(entries_, [&](const auto& entry) { return entry.key.View() == key; });
}

void Dictionary::Merge(const Dictionary& other) {
  if (&other == this) return;  // its entries must not move while they are copied
  if (other.Size() <= FewEntries) {
    for (const auto& [key, value] : other.entries_) Set(key.View(), value);
    return;
  }
  entries_.insert(entries_.end(), other.entries_.begin(), other.entries_.end());
  *this = Dictionary(std::move(entries_));
}

PropertyValue::PropertyValue(Dictionary value)
    : value_(std::make_shared<const Dictionary>(std::move(value))) {}

PropertyValue::PropertyValue(Array value)
    : value_(std::make_shared<const Array>(std::move(value))) {}

const Dictionary* PropertyValue::AsDictionary() const {
  const auto* held = std::get_if<std::shared_ptr<const Dictionary>>(&value_);
  return held == nullptr ? nullptr : held->get();
}

const Array* PropertyValue::AsArray() const {
  const auto* held = std::get_if<std::shared_ptr<const Array>>(&value_);
  return held == nullptr ? nullptr : held->get();
}

bool operator==(const PropertyValue& a, const PropertyValue& b) {
  if (const auto* dictionary = a.AsDictionary()) {
    return b.AsDictionary() != nullptr && *dictionary == *b.AsDictionary();
  }
  if (const auto* array = a.AsArray()) return b.AsArray() != nullptr && *array == *b.AsArray();
  return a.value_ == b.value_;
}

std::optional<std::string_view> PropertyValue::AsString() const {
  const auto* string = std::get_if<String>(&value_);
  if (string == nullptr) return std::nullopt;
  return string->text.View();
}

std::optional<std::string_view> PropertyValue::AsData() const {
  const auto* data = std::get_if<Data>(&value_);
  if (data == nullptr) return std::nullopt;
  return data->bytes.View();
}

std::optional<Number> PropertyValue::AsNumber() const {
  if (const auto* integer = AsInteger()) return *integer;
  if (const auto* real = AsReal()) return *real;
  if (const auto* boolean = AsBoolean()) return Integer(*boolean ? 1 : 0);
  return std::nullopt;
}

}  // namespace fernwick
