#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>

#include "registry/hardware_record.h"
#include "registry/registry.h"

namespace fernwick {

/// A property of a registry entry and the record key that it is written under.
struct PropertyTarget {
  std::string_view property;
  std::string_view key;
};

/// Reads each property in turn and, where it is a number, writes its low 32 bits as a signed 32-bit
/// integer.
void FillIntegers(Registry& registry, RegistryEntry entry, HardwareRecord& record,
                  std::initializer_list<PropertyTarget> targets);

/// Calls `visit` with every entry of the service plane of the class, in registry order. When the
/// class cannot be matched, it is never called. The entries are not released, the iterator is.
template <typename Visit>
void ForEachService(Registry& registry, std::string_view className, Visit visit) {
  RegistryEntry iterator = 0;
  const RegistryStatus status = registry.MatchServicesByClass(className, iterator);
  if (iterator == 0) return;
  if (status == RegistrySuccess) {
    registry.ResetIterator(iterator);
    while (const RegistryEntry entry = registry.NextEntry(iterator)) visit(entry);
  }
  registry.ReleaseEntry(iterator);
}

/// The list as an inventory: none when it is empty.
inline HardwareInventory NonEmpty(std::vector<HardwareRecord> records) {
  if (records.empty()) return std::nullopt;
  return records;
}

}  // namespace fernwick
