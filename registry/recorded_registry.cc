#include "registry/recorded_registry.h"

#include "registry/path_lookup.h"

namespace fernwick {
namespace {

std::optional<PropertyValue> Copied(const PropertyValue* value) {
  if (value == nullptr) return std::nullopt;
  return *value;
}

}  // namespace

RecordedRegistry::RecordedRegistry(const Recording& recording) : recording_(recording) {
  for (const auto& [name, superclass] : recording_.superclasses) {
    subclasses_.emplace(superclass, name);
  }
}

const RecordedEntry* RecordedRegistry::EntryOf(RegistryEntry handle) const {
  if (handle == 0 || handle > recording_.entries.size()) return nullptr;
  return &recording_.entries[handle - 1];
}

const RecordedPlane* RecordedRegistry::PlaneOf(std::string_view name) const {
  const auto plane = recording_.planes.find(name);
  return plane == recording_.planes.end() ? nullptr : &plane->second;
}

RecordedRegistry::Iterator* RecordedRegistry::IteratorOf(RegistryEntry handle) {
  const std::size_t entryCount = recording_.entries.size();
  if (handle <= entryCount || handle - entryCount > iterators_.size()) return nullptr;
  return &iterators_[handle - entryCount - 1];
}

RegistryEntry RecordedRegistry::LookupEntryByPath(std::string_view path) {
  const RecordedPlane* plane = nullptr;
  const auto rootOf = [&](std::string_view name) {
    plane = PlaneOf(name);
    return plane == nullptr ? RegistryEntry{0} : plane->root;
  };
  return LookupByPath(path, rootOf, [&](RegistryEntry parent, std::string_view name) {
    return ChildNamed(*plane, parent, name);
  });
}

// The first child of that name. A root without name that a link puts below another plane's root is
// never found, as no step of a path is empty.
RegistryEntry RecordedRegistry::ChildNamed(const RecordedPlane& plane, RegistryEntry parent,
                                           std::string_view name) const {
  for (const RegistryEntry child : plane.placements.at(parent).children) {
    if (EntryOf(child)->name == name) return child;
  }
  return 0;
}

std::optional<PropertyValue> RecordedRegistry::GetProperty(RegistryEntry entry,
                                                           std::string_view key) {
  const auto* recorded = EntryOf(entry);
  if (recorded == nullptr) return std::nullopt;
  return Copied(recorded->properties.Find(key));
}

std::optional<PropertyValue> RecordedRegistry::SearchProperty(RegistryEntry entry,
                                                              std::string_view plane,
                                                              std::string_view key,
                                                              std::uint32_t options) {
  auto own = GetProperty(entry, key);
  const auto* recordedPlane = PlaneOf(plane);
  if (own || (options & SearchRecursively) == 0 || recordedPlane == nullptr) return own;
  return Copied(FindBelow(*recordedPlane, entry, key));
}

const PropertyValue* RecordedRegistry::FindBelow(const RecordedPlane& plane, RegistryEntry entry,
                                                 std::string_view key) const {
  const auto placement = plane.placements.find(entry);
  if (placement == plane.placements.end()) return nullptr;
  for (const RegistryEntry child : placement->second.children) {
    const auto* value = EntryOf(child)->properties.Find(key);
    if (value == nullptr) value = FindBelow(plane, child, key);
    if (value != nullptr) return value;
  }
  return nullptr;
}

RegistryStatus RecordedRegistry::GetParentEntry(RegistryEntry entry, std::string_view plane,
                                                RegistryEntry& parent) {
  parent = 0;
  const auto* recordedPlane = PlaneOf(plane);
  if (recordedPlane == nullptr) return RegistryNotFound;
  const auto placement = recordedPlane->placements.find(entry);
  if (placement == recordedPlane->placements.end()) return RegistryNotFound;
  parent = placement->second.parent;
  return parent == 0 ? RegistryNotFound : RegistrySuccess;
}

RegistryStatus RecordedRegistry::MatchServicesByClass(std::string_view className,
                                                      RegistryEntry& iterator) {
  iterators_.push_back({&ServicesOfClass(className), 0});
  iterator = static_cast<RegistryEntry>(recording_.entries.size() + iterators_.size());
  return RegistrySuccess;
}

const std::vector<RegistryEntry>& RecordedRegistry::ServicesOfClass(std::string_view className) {
  const auto known = servicesByClass_.find(className);
  if (known != servicesByClass_.end()) return known->second;
  auto& services = servicesByClass_[std::string(className)];
  const auto* plane = PlaneOf(ServicePlane);
  if (plane != nullptr) AppendConforming(*plane, plane->root, className, services);
  return services;
}

void RecordedRegistry::AppendConforming(const RecordedPlane& plane, RegistryEntry entry,
                                        std::string_view className,
                                        std::vector<RegistryEntry>& found) {
  if (ConformsToClass(entry, className)) found.push_back(entry);
  for (const RegistryEntry child : plane.placements.at(entry).children) {
    AppendConforming(plane, child, className, found);
  }
}

void RecordedRegistry::ResetIterator(RegistryEntry iterator) {
  if (auto* found = IteratorOf(iterator)) found->next = 0;
}

RegistryEntry RecordedRegistry::NextEntry(RegistryEntry iterator) {
  auto* found = IteratorOf(iterator);
  if (found == nullptr || found->next == found->entries->size()) return 0;
  return (*found->entries)[found->next++];
}

bool RecordedRegistry::ConformsToClass(RegistryEntry entry, std::string_view className) {
  const auto* recorded = EntryOf(entry);
  if (recorded == nullptr || recorded->className.empty()) return false;
  return ClassesConformingTo(className).contains(recorded->className);
}

// A depth-first traversal from the class down to everything that derives from it, once for each
// class that is asked for; the result is cached. Walking up from the class of each entry instead
// would cost the length of its chain each time, and a recording may have chains of any length.
const std::set<std::string_view>& RecordedRegistry::ClassesConformingTo(
    std::string_view className) {
  const auto known = conformingClasses_.find(className);
  if (known != conformingClasses_.end()) return known->second;
  const auto added = conformingClasses_.try_emplace(std::string(className)).first;
  auto& classes = added->second;
  std::vector<std::string_view> reached{added->first};
  while (!reached.empty()) {
    const auto name = reached.back();
    reached.pop_back();
    classes.insert(name);
    const auto [first, last] = subclasses_.equal_range(name);
    for (auto subclass = first; subclass != last; ++subclass) reached.push_back(subclass->second);
  }
  return classes;
}

// Handles stay valid; there is nothing to release.
void RecordedRegistry::ReleaseEntry(RegistryEntry) {}

}  // namespace fernwick
