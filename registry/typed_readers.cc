#include "registry/typed_readers.h"

#include "value/number.h"

namespace fernwick {
namespace {

// Reads the number and stores what `convert` makes of it.
template <typename Place, typename Convert>
RegistryStatus ReadNumber(Registry& registry, RegistryEntry entry, std::string_view key,
                          Place& place, Convert convert) {
  const auto value = registry.GetProperty(entry, key);
  const auto number = value ? value->AsNumber() : std::nullopt;
  if (!number) return RegistryNotFound;
  place = convert(*number);
  return RegistrySuccess;
}

}  // namespace

RegistryStatus ReadBoolProperty(Registry& registry, RegistryEntry entry, std::string_view key,
                                bool& place) {
  return ReadNumber(registry, entry, key, place, IsNonZero);
}

RegistryStatus ReadU32Property(Registry& registry, RegistryEntry entry, std::string_view key,
                               std::uint32_t& place) {
  return ReadNumber(registry, entry, key, place, [](const Number& number) {
    return static_cast<std::uint32_t>(ToUnsigned64(number));
  });
}

RegistryStatus ReadU64Property(Registry& registry, RegistryEntry entry, std::string_view key,
                               std::uint64_t& place) {
  return ReadNumber(registry, entry, key, place, ToUnsigned64);
}

std::uint32_t DecodeBcd(std::uint32_t packed) {
  std::uint32_t sum = 0;
  for (std::uint32_t weight = 1; packed != 0; packed >>= 4, weight *= 10) {
    sum += (packed & 0xF) * weight;
  }
  return sum;
}

}  // namespace fernwick
