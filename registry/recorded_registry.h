#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "registry/registry.h"
#include "value/property_list_reader.h"

namespace fernwick {

/// One entry of a recorded computer. Views the recording's property list.
struct RecordedEntry {
  std::string_view name;       // empty for a plane's root that has none
  std::string_view className;  // empty: it conforms to no class
  Dictionary properties;

  friend bool operator==(const RecordedEntry&, const RecordedEntry&) = default;
};

/// One plane: the tree of its entries. Entries are numbered by their handles, 1 and up.
struct RecordedPlane {
  struct Placement {
    RegistryEntry parent = 0;  // 0 at the root
    std::vector<RegistryEntry> children;

    friend bool operator==(const Placement&, const Placement&) = default;
  };
  RegistryEntry root = 0;
  std::map<RegistryEntry, Placement> placements;  // of every entry in the plane

  friend bool operator==(const RecordedPlane&, const RecordedPlane&) = default;
};

/// What was recorded of a computer, well-formed. Everything in it views its property list.
struct Recording {
  PropertyList list;
  std::vector<RecordedEntry> entries;  // the one with handle n at n − 1
  std::map<std::string_view, RecordedPlane> planes;
  std::map<std::string_view, std::string_view> superclasses;  // class to the one it derives from
};

/// The registry of a recorded computer. An entry's handle is the one that it has in the recording;
/// those of iterators follow. All are valid as long as the registry, and so are the values that it
/// returns as long as the recording. Several may use one recording, each in a thread of its own.
class RecordedRegistry : public Registry {
 public:
  /// REQUIRES: `recording` outlives the registry and does not change, except for the properties of
  /// its entries.
  explicit RecordedRegistry(const Recording& recording);
  explicit RecordedRegistry(const Recording&& recording) = delete;  // the reference would dangle
  RecordedRegistry(const RecordedRegistry&) = delete;
  RecordedRegistry& operator=(const RecordedRegistry&) = delete;

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

 private:
  struct Iterator {
    const std::vector<RegistryEntry>* entries;
    std::size_t next;
  };

  const RecordedEntry* EntryOf(RegistryEntry handle) const;
  const RecordedPlane* PlaneOf(std::string_view name) const;
  Iterator* IteratorOf(RegistryEntry handle);
  const PropertyValue* FindBelow(const RecordedPlane& plane, RegistryEntry entry,
                                 std::string_view key) const;
  RegistryEntry ChildNamed(const RecordedPlane& plane, RegistryEntry parent,
                           std::string_view name) const;
  const std::set<std::string_view>& ClassesConformingTo(std::string_view className);
  const std::vector<RegistryEntry>& ServicesOfClass(std::string_view className);
  void AppendConforming(const RecordedPlane& plane, RegistryEntry entry, std::string_view className,
                        std::vector<RegistryEntry>& found);

  const Recording& recording_;
  std::vector<Iterator> iterators_;  // handles above those of the entries
  std::multimap<std::string_view, std::string_view> subclasses_;  // views recording_
  // Caches by class name, of what was asked for: the classes that are or derive from it, and the
  // entries that its iterators visit.
  std::map<std::string, std::set<std::string_view>, std::less<>> conformingClasses_;
  std::map<std::string, std::vector<RegistryEntry>, std::less<>> servicesByClass_;
};

}  // namespace fernwick
