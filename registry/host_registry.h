#pragma once

#include "registry/registry.h"

namespace fernwick {

/// The registry of the computer that the tool runs on. This platform has no I/O registry, so it is
/// a registry without entries: nothing is found, no property is set, no service matches.
class HostRegistry : public Registry {
 public:
  RegistryEntry LookupEntryByPath(std::string_view path) override;
  std::optional<PropertyValue> GetProperty(RegistryEntry entry, std::string_view key) override;
  std::optional<PropertyValue> SearchProperty(RegistryEntry entry, std::string_view plane,
                                              std::string_view key, std::uint32_t options) override;
  RegistryStatus GetParentEntry(RegistryEntry entry, std::string_view plane,
                                RegistryEntry& parent) override;
  RegistryStatus MatchServicesByClass(std::string_view className, RegistryEntry& iterator) override;
  void ResetIterator(RegistryEntry iterator) override;
  RegistryEntry NextEntry(RegistryEntry iterator) override;
  bool ConformsToClass(RegistryEntry entry, std::string_view className) override;
  void ReleaseEntry(RegistryEntry handle) override;
};

}  // namespace fernwick
