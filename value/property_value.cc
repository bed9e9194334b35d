#include "value/property_value.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace fernwick {
namespace {

// Up to here comparing keys with each other costs less than sorting them.
constexpr std::size_t FewEntries = 32;

// A Bloom filter of one word: one of 64 bits, the same for equal keys and mostly another for
// others.
std::uint64_t SignatureOf(std::string_view key) {
  if (key.empty()) return 1;
  const std::size_t first = static_cast<unsigned char>(key.front());
  const std::size_t last = static_cast<unsigned char>(key.back());
  return std::uint64_t{1} << ((key.size() * 7 + first * 5 + last) % 64);
}

bool HasRepeatedKeyAmongFew(std::span<const DictionaryEntry> entries) {
  std::uint64_t signatures = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto key = entries[i].key;
    const std::uint64_t signature = SignatureOf(key);
    if ((signatures & signature) != 0) {
      const auto before = entries.first(i);
      if (std::ranges::find(before, key, &DictionaryEntry::key) != before.end()) return true;
    }
    signatures |= signature;
  }
  return false;
}

// The indices of the entries, by key; the indices of one key in their own order.
std::vector<std::size_t> IndicesByKey(std::span<const DictionaryEntry> entries) {
  std::vector<std::size_t> indices(entries.size());
  std::iota(indices.begin(), indices.end(), std::size_t{0});
  std::ranges::stable_sort(indices, {}, [&](std::size_t index) { return entries[index].key; });
  return indices;
}

std::span<DictionaryEntry> FoldRepeatedKeys(std::span<DictionaryEntry> entries) {
  const auto indices = IndicesByKey(entries);
  std::vector<bool> folded(entries.size());
  for (std::size_t first = 0; first < indices.size();) {
    std::size_t next = first + 1;
    while (next < indices.size() && entries[indices[next]].key == entries[indices[first]].key) {
      folded[indices[next++]] = true;
    }
    entries[indices[first]].value = entries[indices[next - 1]].value;
    first = next;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!folded[i]) entries[kept++] = entries[i];
  }
  return entries.first(kept);
}

}  // namespace

std::span<DictionaryEntry> WithoutRepeatedKeys(std::span<DictionaryEntry> entries) {
  if (entries.size() <= FewEntries && !HasRepeatedKeyAmongFew(entries)) return entries;
  return FoldRepeatedKeys(entries);
}

std::optional<Number> PropertyValue::AsNumber() const {
  switch (kind_) {
    case Kind::Integer: return Integer::OfBits(content_.bits, isNegative_);
    case Kind::Real: return content_.real;
    case Kind::Boolean: return Integer(content_.boolean ? 1 : 0);
    default: return std::nullopt;
  }
}

bool operator==(const Array& a, const Array& b) {
  return std::ranges::equal(a, b);
}

bool operator==(const Dictionary& a, const Dictionary& b) {
  return std::ranges::equal(a.Entries(), b.Entries());
}

bool operator==(const PropertyValue& a, const PropertyValue& b) {
  using Kind = PropertyValue::Kind;
  if (a.kind_ != b.kind_) return false;
  switch (a.kind_) {
    case Kind::Dictionary: return a.AsDictionary() == b.AsDictionary();
    case Kind::Sequence: return a.AsArray() == b.AsArray();
    case Kind::String:
    case Kind::Data: return a.Bytes() == b.Bytes();
    case Kind::Integer: return a.AsInteger() == b.AsInteger();
    case Kind::Real: return a.content_.real == b.content_.real;
    case Kind::Boolean: return a.content_.boolean == b.content_.boolean;
    default: return a.content_.date == b.content_.date;
  }
}

}  // namespace fernwick
