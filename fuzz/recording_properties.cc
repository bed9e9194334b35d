#include "fuzz/recording_properties.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/hold.h"
#include "fuzz/plain_recording.h"
#include "fuzz/same_value.h"

namespace fernwick::fuzz {
namespace {

constexpr std::size_t Few = 8;

using Found = std::optional<PropertyValue>;

template <typename Range>
auto FirstFew(const Range& range) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(Few, range.size()));
  return std::vector(range.begin(), std::next(range.begin(), count));
}

bool Same(const Found& a, const Found& b) {
  return a && b ? SameValue(*a, *b) : a.has_value() == b.has_value();
}

Found FirstWithKey(const Recording& recording, const Entries& entries, std::string_view key) {
  for (const auto entry : entries) {
    const auto* value = EntryOf(recording, entry).properties.Find(key);
    if (value != nullptr) return *value;
  }
  return std::nullopt;
}

void HoldClassChainsEnd(const Recording& recording) {
  for (const auto& [start, superclass] : FirstFew(recording.superclasses)) {
    std::optional<std::string> name = superclass;
    for (std::size_t steps = 0; name; ++steps, name = SuperclassOf(recording, *name)) {
      Hold(*name != start && steps <= recording.superclasses.size(), "a chain of classes ends");
    }
  }
}

void HoldPlane(const Recording& recording, const RecordedPlane& plane) {
  Hold(plane.placements.at(plane.root).parent == 0, "a root has no parent");
  auto entries = SubtreeOf(plane, plane.root);
  Hold(entries.size() == plane.placements.size(), "a plane holds what hangs below its root");
  for (const auto& [entry, placement] : plane.placements) {
    for (const auto child : placement.children) {
      Hold(plane.placements.at(child).parent == entry, "a child knows its parent");
    }
    Hold(EntryOf(recording, entry).name.find('/') == std::string::npos, "no name holds a slash");
  }
  std::ranges::sort(entries);
  Hold(std::ranges::adjacent_find(entries) == entries.end(), "an entry stands once in a plane");
}

// One plane of one registry and what is asked about it.
class PlaneProperties {
 public:
  PlaneProperties(const Recording& recording, const std::string& name, RecordedRegistry& registry)
      : recording_(recording),
        name_(name),
        plane_(recording.planes.at(name)),
        registry_(registry) {}

  void HoldAll() {
    // What stands before the first colon of a path is the plane.
    const bool canBeNamed = name_.find(':') == std::string::npos;
    if (canBeNamed) HoldRootPaths();
    for (const auto entry : FirstFew(SubtreeOf(plane_, plane_.root))) {
      HoldParent(entry);
      // An entry without a name of its own has no path but a root's.
      const bool hasPath = entry != plane_.root && !EntryOf(recording_, entry).name.empty();
      if (canBeNamed && hasPath) HoldPath(entry);
      HoldProperties(entry);
    }
  }

 private:
  void HoldRootPaths() {
    Hold(registry_.LookupEntryByPath(name_ + ":/") == plane_.root, "\"PLANE:/\" is the root");
    Hold(registry_.LookupEntryByPath(name_ + ":") == 0, "a path begins with a slash");
    Hold(registry_.LookupEntryByPath(name_ + "://") == 0, "an empty step names nothing");
  }

  void HoldParent(RegistryEntry entry) {
    RegistryEntry parent = entry;
    const auto status = registry_.GetParentEntry(entry, name_, parent);
    Hold(parent == plane_.placements.at(entry).parent, "a parent is the one above");
    Hold((status == RegistrySuccess) == (parent != 0), "a status tells whether there is a parent");
  }

  // The names from the root down to the entry, and what they lead to: of children that share a
  // name, always the first.
  RegistryEntry Follow(RegistryEntry entry, std::string& path) {
    const auto parent = plane_.placements.at(entry).parent;
    if (parent == 0) return plane_.root;
    const auto above = Follow(parent, path);
    const auto& name = EntryOf(recording_, entry).name;
    path += "/" + name;
    if (above == 0 || name.empty()) return 0;
    for (const auto child : plane_.placements.at(above).children) {
      if (EntryOf(recording_, child).name == name) return child;
    }
    return 0;
  }

  void HoldPath(RegistryEntry entry) {
    std::string path = name_ + ":";
    const auto expected = Follow(entry, path);
    Hold(registry_.LookupEntryByPath(path) == expected, "a path leads to the first of its names");
    Hold(registry_.LookupEntryByPath(path + "/") == 0, "a path does not end in a slash");
  }

  void HoldProperties(RegistryEntry entry) {
    HoldProperty(entry, "no entry has this key");
    for (const auto below : FirstFew(SubtreeOf(plane_, entry))) {
      for (const auto& property : FirstFew(EntryOf(recording_, below).properties.Entries())) {
        HoldProperty(entry, property.key.View());
      }
    }
  }

  void HoldProperty(RegistryEntry entry, std::string_view key) {
    const auto own = FirstWithKey(recording_, {entry}, key);
    Hold(Same(registry_.GetProperty(entry, key), own), "a property is the entry's own");
    Hold(Same(registry_.SearchProperty(entry, name_, key, 0), own), "only bit 0 searches below");
    Hold(Same(registry_.SearchProperty(entry, name_, key, SearchRecursively),
              FirstWithKey(recording_, SubtreeOf(plane_, entry), key)),
         "a search finds the first below");
  }

  const Recording& recording_;
  const std::string& name_;
  const RecordedPlane& plane_;
  RecordedRegistry& registry_;
};

Entries EntriesOf(RecordedRegistry& registry, RegistryEntry iterator) {
  Entries entries;
  while (const auto entry = registry.NextEntry(iterator)) entries.push_back(entry);
  return entries;
}

void HoldMatching(const Recording& recording, RecordedRegistry& registry,
                  const std::string& className) {
  RegistryEntry iterator = 0;
  Hold(registry.MatchServicesByClass(className, iterator) == RegistrySuccess,
       "a class can be matched");
  registry.ResetIterator(iterator);
  const auto expected = ServicesOfClass(recording, className);
  Hold(EntriesOf(registry, iterator) == expected, "the services of a class come in their order");
  Hold(registry.NextEntry(iterator) == 0, "what is exhausted stays so");
  registry.ResetIterator(iterator);
  Hold(EntriesOf(registry, iterator) == expected, "a rewound iterator begins anew");
  registry.ReleaseEntry(iterator);
  for (const auto entry : FirstFew(expected)) {
    Hold(registry.ConformsToClass(entry, className), "a service conforms to its class");
  }
}

std::set<std::string> ClassesOf(const Recording& recording) {
  std::set<std::string> classes{"", "no such class"};
  for (const auto& entry : FirstFew(recording.entries)) classes.insert(entry.class_);
  for (const auto& [name, superclass] : FirstFew(recording.superclasses)) {
    classes.insert({name, superclass});
  }
  return classes;
}

void HoldNothingBehind(RecordedRegistry& registry, RegistryEntry handle) {
  RegistryEntry parent = handle;
  Hold(registry.GetParentEntry(handle, "IOService", parent) != RegistrySuccess && parent == 0,
       "no entry has no parent");
  Hold(!registry.GetProperty(handle, "Name"), "no entry has no property");
  Hold(!registry.SearchProperty(handle, "IOService", "Name", SearchRecursively),
       "nothing is found below no entry");
  Hold(!registry.ConformsToClass(handle, ""), "no entry conforms to no class");
  registry.ResetIterator(handle);
  Hold(registry.NextEntry(handle) == 0, "no iterator has no entry");
}

}  // namespace

void HoldWellFormed(const Recording& recording) {
  HoldClassChainsEnd(recording);
  for (const auto& [name, plane] : recording.planes) HoldPlane(recording, plane);
}

void HoldOperations(const Recording& recording) {
  RecordedRegistry registry(recording);
  HoldNothingBehind(registry, 0);
  HoldNothingBehind(registry, static_cast<RegistryEntry>(recording.entries.size() + 1));
  for (const auto& [name, plane] : recording.planes) {
    PlaneProperties(recording, name, registry).HoldAll();
  }
  for (const auto& name : ClassesOf(recording)) HoldMatching(recording, registry, name);
}

}  // namespace fernwick::fuzz
