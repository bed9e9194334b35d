#pragma once

#include <optional>
#include <string_view>

#include "registry/hardware_record.h"
#include "registry/key_schema.h"
#include "registry/registry.h"

namespace fernwick {

/// Reads the property of `entry` that `origin` names and writes the converted value under `key`. A
/// property that is absent or of another kind leaves the record as it is. So does, without a read,
/// a conversion that is not of one property alone: only Signed32, Bcd, LowNibble, NonZero and Text
/// are; the callers have rules of their own for the others.
void FillKey(Registry& registry, RegistryEntry entry, std::string_view key,
             const PropertyOrigin& origin, HardwareRecord& record);

/// Calls `visit` with every entry of the service plane of the class, in registry order, until it
/// returns a fault, which is returned. When the class cannot be matched, it is never called. The
/// entries are not released, the iterator is.
template <typename Visit>
std::optional<Fault> ForEachService(Registry& registry, std::string_view className, Visit visit) {
  RegistryEntry iterator = 0;
  const RegistryStatus status = registry.MatchServicesByClass(className, iterator);
  if (iterator == 0) return std::nullopt;
  std::optional<Fault> fault;
  if (status == RegistrySuccess) {
    registry.ResetIterator(iterator);
    while (!fault) {
      const RegistryEntry entry = registry.NextEntry(iterator);
      if (entry == 0) break;
      fault = visit(entry);
    }
  }
  registry.ReleaseEntry(iterator);
  return fault;
}

}  // namespace fernwick
