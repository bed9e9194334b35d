#include "personality/checked_values.h"

#include <algorithm>
#include <cstdint>

#include "value/key_hash.h"

namespace fernwick {
namespace {

// Also stands for a place where there is none.
constexpr std::size_t KeyCount = std::size(CheckedKeyNames);

constexpr std::size_t SlotCount = 128;

constexpr std::size_t SlotOf(std::string_view name) {
  return KeyHash(name) % SlotCount;
}

// The place among the names of the only one that a slot can hold.
constexpr auto PlaceBySlot = [] {
  std::array<std::uint8_t, SlotCount> places;
  places.fill(KeyCount);
  for (std::uint8_t place = 0; place < KeyCount; ++place) {
    places[SlotOf(CheckedKeyNames[place])] = place;
  }
  return places;
}();

// Each name has a slot of its own.
static_assert(std::ranges::all_of(CheckedKeyNames, [](std::string_view name) {
  return CheckedKeyNames[PlaceBySlot[SlotOf(name)]] == name;
}));

std::size_t PlaceOf(std::string_view name) {
  const std::size_t place = PlaceBySlot[SlotOf(name)];
  if (place == KeyCount || CheckedKeyNames[place] != name) return KeyCount;
  return place;
}

}  // namespace

std::optional<CheckedKey> CheckedKey::Named(std::string_view name) {
  const auto place = PlaceOf(name);
  if (place == KeyCount) return std::nullopt;
  return CheckedKey(place);
}

std::size_t CheckedKeyMemo::PlaceOf(const DictionaryKey& key) {
  // Keys come from the heap, which gives each at least 32 bytes.
  auto& slot = slots_[reinterpret_cast<std::uintptr_t>(key.Address()) / 32 % slots_.size()];
  if (slot.address != key.Address()) slot = {key.Address(), fernwick::PlaceOf(key.View())};
  return slot.place;
}

template <typename PlaceFinder>
CheckedValues::CheckedValues(const Dictionary& record, PlaceFinder placeOf) {
  std::uint32_t present = 0;  // in no member, which every entry would have to wait for
  for (const auto& [key, value] : record.Entries()) {
    const std::size_t place = placeOf(key);
    if (place == KeyCount) continue;
    present |= std::uint32_t{1} << place;
    values_[place] = &value;
  }
  present_ = present;
}

CheckedValues::CheckedValues(const Dictionary& record)
    : CheckedValues(record, [](const DictionaryKey& key) { return PlaceOf(key.View()); }) {}

CheckedValues::CheckedValues(const Dictionary& record, CheckedKeyMemo& memo)
    : CheckedValues(record, [&](const DictionaryKey& key) { return memo.PlaceOf(key); }) {}

}  // namespace fernwick
