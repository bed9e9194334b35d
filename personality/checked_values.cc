#include "personality/checked_values.h"

#include <algorithm>
#include <cstdint>

namespace fernwick {
namespace {

// Also stands for a place where there is none.
constexpr std::size_t KeyCount = std::size(CheckedKeyNames);

constexpr std::size_t SlotCount = 128;

// The same for equal names, and another for each name that the checks read.
constexpr std::size_t SlotOf(std::string_view name) {
  const auto size = name.size();
  if (size < 2) return 0;
  const auto at = [&](std::size_t i) -> std::size_t { return static_cast<unsigned char>(name[i]); };
  return (size + at(1) + at(size / 2) + at(size * 3 / 4)) % SlotCount;
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

CheckedValues::CheckedValues(const Dictionary& record) {
  for (const auto& [key, value] : record.Entries()) {
    const auto place = PlaceOf(key.View());
    if (place == KeyCount) continue;
    present_ |= std::uint32_t{1} << place;
    values_[place] = &value;
  }
}

}  // namespace fernwick
