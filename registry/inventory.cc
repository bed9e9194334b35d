#include "registry/inventory.h"

#include <cstdint>

#include "registry/typed_readers.h"

namespace fernwick {
namespace {

std::optional<std::uint32_t> ReadU32(Registry& registry, RegistryEntry entry,
                                     std::string_view property) {
  std::uint32_t number = 0;
  if (ReadU32Property(registry, entry, property, number) != RegistrySuccess) return std::nullopt;
  return number;
}

std::optional<PropertyValue> Convert(Registry& registry, RegistryEntry entry,
                                     const PropertyOrigin& origin) {
  switch (origin.conversion) {
    case Conversion::Signed32: {
      const auto number = ReadU32(registry, entry, origin.property);
      if (!number) return std::nullopt;
      return static_cast<std::int32_t>(*number);
    }
    case Conversion::Bcd: {
      const auto number = ReadU32(registry, entry, origin.property);
      if (!number) return std::nullopt;
      return static_cast<std::int32_t>(DecodeBcd(*number));
    }
    case Conversion::LowNibble: {
      std::uint64_t number = 0;
      const auto status = ReadU64Property(registry, entry, origin.property, number);
      if (status != RegistrySuccess) return std::nullopt;
      return static_cast<std::int32_t>(number & 0xF);
    }
    case Conversion::NonZero: {
      bool number = false;
      const auto status = ReadBoolProperty(registry, entry, origin.property, number);
      if (status != RegistrySuccess) return std::nullopt;
      return number;
    }
    case Conversion::Text: {
      const auto value = registry.GetProperty(entry, origin.property);
      return value && value->AsString() ? value : std::nullopt;
    }
    default: return std::nullopt;  // of no property, or not of one alone
  }
}

}  // namespace

void FillKey(Registry& registry, RegistryEntry entry, std::string_view key,
             const PropertyOrigin& origin, HardwareRecord& record) {
  if (const auto value = Convert(registry, entry, origin)) record.Set(key, *value);
}

}  // namespace fernwick
