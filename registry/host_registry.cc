#include "registry/host_registry.h"

namespace fernwick {

RegistryEntry HostRegistry::LookupEntryByPath(std::string_view) {
  return 0;
}

std::optional<PropertyValue> HostRegistry::GetProperty(RegistryEntry, std::string_view) {
  return std::nullopt;
}

std::optional<PropertyValue> HostRegistry::SearchProperty(RegistryEntry, std::string_view,
                                                          std::string_view, std::uint32_t) {
  return std::nullopt;
}

RegistryStatus HostRegistry::GetParentEntry(RegistryEntry, std::string_view,
                                            RegistryEntry& parent) {
  parent = 0;
  return RegistryNotFound;
}

RegistryStatus HostRegistry::MatchServicesByClass(std::string_view, RegistryEntry& iterator) {
  iterator = 0;
  return RegistryNotFound;
}

void HostRegistry::ResetIterator(RegistryEntry) {}

RegistryEntry HostRegistry::NextEntry(RegistryEntry) {
  return 0;
}

bool HostRegistry::ConformsToClass(RegistryEntry, std::string_view) {
  return false;
}

void HostRegistry::ReleaseEntry(RegistryEntry) {}

}  // namespace fernwick
