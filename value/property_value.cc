// Repeated keys. Small dictionaries, which are nearly all, are first tested for repetitions with a
// Bloom filter of one 64-bit word: each key sets one bit, and a key is compared with those before
// it only where its bit is already set. That is close to linear for keys as they occur, quadratic
// at worst, and allocates nothing. A dictionary that is large or has a repetition is folded: its
// indices are sorted stably by key, so that the entries of one key are adjacent and in file order;
// the first of them keeps its position and receives the value of the last. That costs n log n, also
// for keys that were chosen to make it slow.

#include "value/property_value.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace fernwick {
namespace {

// The bit of a key in the Bloom filter: computed from its length and its first and last byte.
std::uint64_t FilterBitOf(std::string_view key) {
  if (key.empty()) return 1;
  const std::size_t first = static_cast<unsigned char>(key.front());
  const std::size_t last = static_cast<unsigned char>(key.back());
  return std::uint64_t{1} << ((key.size() * 7 + first * 5 + last) % 64);
}

bool HasRepeatedKeyAmongFew(std::span<const DictionaryEntry> entries) {
  std::uint64_t filter = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto key = entries[i].key;
    const std::uint64_t bit = FilterBitOf(key);
    if ((filter & bit) != 0) {
      const auto before = entries.first(i);
      if (std::ranges::find(before, key, &DictionaryEntry::key) != before.end()) return true;
    }
    filter |= bit;
  }
  return false;
}

// The indices of the entries sorted by key, in file order within one key.
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
  std::size_t size = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!folded[i]) entries[size++] = entries[i];
  }
  return entries.first(size);
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
    case Kind::Array: return a.AsArray() == b.AsArray();
    case Kind::String:
    case Kind::Data: return a.Bytes() == b.Bytes();
    case Kind::Integer: return a.AsInteger() == b.AsInteger();
    case Kind::Real: return a.content_.real == b.content_.real;
    case Kind::Boolean: return a.content_.boolean == b.content_.boolean;
    default: return a.content_.date == b.content_.date;
  }
}

}  // namespace fernwick
