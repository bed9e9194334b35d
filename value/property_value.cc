#include "value/property_value.h"

#include <algorithm>
#include <numeric>

namespace fernwick {
namespace {

// Up to here comparing keys with each other costs less than sorting them.
constexpr std::size_t FewEntries = 32;

// One of 64 bits, the same for equal keys and mostly another for others.
std::uint64_t SignatureOf(std::string_view key) {
  if (key.empty()) return 1;
  const std::size_t first = static_cast<unsigned char>(key.front());
  const std::size_t last = static_cast<unsigned char>(key.back());
  return std::uint64_t{1} << ((key.size() * 7 + first * 5 + last) % 64);
}

bool HasRepeatedKeyAmongFew(std::span<const DictionaryEntry> entries) {
  std::uint64_t signatures = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto key = entries[i].key.View();
    const std::uint64_t signature = SignatureOf(key);
    if ((signatures & signature) != 0) {
      const auto before = entries.first(i);
      if (std::ranges::any_of(before, [&](const auto& e) { return e.key.View() == key; })) {
        return true;
      }
    }
    signatures |= signature;
  }
  return false;
}

// What the copies of a dictionary or an array share.
template <typename Container>
struct Holder final : Shared {
  explicit Holder(Container held) : content(std::move(held)) {}
  const Container content;
};

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
    : content_{.dictionary = nullptr}, kind_(Kind::Dictionary) {
  const auto* holder = new Holder<Dictionary>(std::move(value));
  share_ = Share(holder);
  content_.dictionary = &holder->content;
}

PropertyValue::PropertyValue(Array value) : content_{.array = nullptr}, kind_(Kind::Sequence) {
  const auto* holder = new Holder<Array>(std::move(value));
  share_ = Share(holder);
  content_.array = &holder->content;
}

std::optional<Number> PropertyValue::AsNumber() const {
  if (const auto integer = AsInteger()) return *integer;
  if (const auto* real = AsReal()) return *real;
  if (const auto* boolean = AsBoolean()) return Integer(*boolean ? 1 : 0);
  return std::nullopt;
}

bool operator==(const PropertyValue& a, const PropertyValue& b) {
  using Kind = PropertyValue::Kind;
  if (a.kind_ != b.kind_) return false;
  switch (a.kind_) {
    case Kind::Dictionary: return *a.content_.dictionary == *b.content_.dictionary;
    case Kind::Sequence: return *a.content_.array == *b.content_.array;
    case Kind::String:
    case Kind::Data: return a.Bytes() == b.Bytes();
    case Kind::Integer: return a.WholeNumber() == b.WholeNumber();
    case Kind::Real: return a.content_.real == b.content_.real;
    case Kind::Boolean: return a.content_.boolean == b.content_.boolean;
    default: return a.content_.date == b.content_.date;
  }
}

}  // namespace fernwick
