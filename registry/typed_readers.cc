#include "registry/typed_readers.h"

#include "value/number.h"

namespace fernwick {
namespace {

// Reads the number and stores the result of `convert`.
template <typename T, typename Convert>
RegistryStatus ReadNumber(Registry& registry, RegistryEntry entry, std::string_view key, T& result,
                          Convert convert) {
  const auto value = registry.GetProperty(entry, key);
  const auto number = value ? value->AsNumber() : std::nullopt;
  if (!number) return RegistryNotFound;
  result = convert(*number);
  return RegistrySuccess;
}

}  // namespace

RegistryStatus ReadBoolProperty(Registry& registry, RegistryEntry entry, std::string_view key,
                                bool& result) {
  return ReadNumber(registry, entry, key, result, IsNonZero);
}

RegistryStatus ReadU32Property(Registry& registry, RegistryEntry entry, std::string_view key,
                               std::uint32_t& result) {
  return ReadNumber(registry, entry, key, result, [](const Number& number) {
    return static_cast<std::uint32_t>(ToUnsigned64(number));
  });
}

RegistryStatus ReadU64Property(Registry& registry, RegistryEntry entry, std::string_view key,
                               std::uint64_t& result) {
  return ReadNumber(registry, entry, key, result, ToUnsigned64);
}

std::uint32_t DecodeBcd(std::uint32_t packed) {
  std::uint32_t sum = 0;
  for (std::uint32_t weight = 1; packed != 0; packed >>= 4, weight *= 10) {
    sum += (packed & 0xF) * weight;
  }
  return sum;
}

}  // namespace fernwick
