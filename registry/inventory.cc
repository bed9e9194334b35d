#include "registry/inventory.h"

#include <cstdint>

#include "registry/typed_readers.h"

namespace fernwick {

void FillIntegers(Registry& registry, RegistryEntry entry, HardwareRecord& record,
                  std::initializer_list<PropertyTarget> targets) {
  for (const auto& [property, key] : targets) {
    std::uint32_t number = 0;
    if (ReadU32Property(registry, entry, property, number) != RegistrySuccess) continue;
    record.Set(key, static_cast<std::int32_t>(number));
  }
}

}  // namespace fernwick
