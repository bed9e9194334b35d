#include "fuzz/recording_properties.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/require.h"
#include "fuzz/same_value.h"
#include "testing/reference/recording.h"

namespace fernwick::fuzz {
namespace {

using testing::reference::Entries;
using testing::reference::EntryOf;
using testing::reference::ServicesOfClass;
using testing::reference::SubtreeOf;
using testing::reference::SuperclassOf;

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

void CheckClassChainsEnd(const Recording& recording) {
  for (const auto& [start, superclass] : FirstFew(recording.superclasses)) {
    std::optional<std::string_view> name = superclass;
    for (std::size_t steps = 0; name; ++steps, name = SuperclassOf(recording, *name)) {
      Require(*name != start && steps <= recording.superclasses.size(), "a chain of classes ends");
    }
  }
}

void CheckPlane(const Recording& recording, std::string_view name, const RecordedPlane& plane) {
  Require(!name.empty() && name.find(':') == std::string::npos, "a path can name a plane");
  Require(plane.placements.at(plane.root).parent == 0, "a root has no parent");
  auto entries = SubtreeOf(plane, plane.root);
  Require(entries.size() == plane.placements.size(), "a plane is what is below its root");
  for (const auto& [entry, placement] : plane.placements) {
    for (const auto child : placement.children) {
      Require(plane.placements.at(child).parent == entry, "a child knows its parent");
    }
    Require(EntryOf(recording, entry).name.find('/') == std::string::npos, "no name has a slash");
  }
  std::ranges::sort(entries);
  Require(std::ranges::adjacent_find(entries) == entries.end(), "an entry is once in a plane");
}

// One plane of one registry and what is asked about it.
class PlaneProperties {
 public:
  PlaneProperties(const Recording& recording, std::string_view name, RecordedRegistry& registry)
      : recording_(recording),
        name_(name),
        plane_(recording.planes.at(name)),
        registry_(registry) {}

  void CheckAll() {
    CheckRootPaths();
    for (const auto entry : FirstFew(SubtreeOf(plane_, plane_.root))) {
      CheckParent(entry);
      // An entry without a name of its own has no path but a root's.
      const bool hasPath = entry != plane_.root && !EntryOf(recording_, entry).name.empty();
      if (hasPath) CheckPath(entry);
      CheckProperties(entry);
    }
  }

 private:
  void CheckRootPaths() {
    Require(registry_.LookupEntryByPath(name_ + ":/") == plane_.root, "\"PLANE:/\" is the root");
    Require(registry_.LookupEntryByPath(name_ + ":") == 0, "a path begins with a slash");
    Require(registry_.LookupEntryByPath(name_ + "://") == 0, "an empty step names nothing");
  }

  void CheckParent(RegistryEntry entry) {
    RegistryEntry parent = entry;
    const auto status = registry_.GetParentEntry(entry, name_, parent);
    Require(parent == plane_.placements.at(entry).parent, "a parent is the one above");
    Require((status == RegistrySuccess) == (parent != 0),
            "a status says whether there is a parent");
  }

  // The names from the root down to the entry, and what they lead to: of children that share a
  // name, always the first.
  RegistryEntry Follow(RegistryEntry entry, std::string& path) {
    const auto parent = plane_.placements.at(entry).parent;
    if (parent == 0) return plane_.root;
    const auto above = Follow(parent, path);
    const auto& name = EntryOf(recording_, entry).name;
    path.append("/").append(name);
    if (above == 0 || name.empty()) return 0;
    for (const auto child : plane_.placements.at(above).children) {
      if (EntryOf(recording_, child).name == name) return child;
    }
    return 0;
  }

  void CheckPath(RegistryEntry entry) {
    std::string path = name_ + ":";
    const auto expected = Follow(entry, path);
    Require(registry_.LookupEntryByPath(path) == expected,
            "a path leads to the first of its names");
    Require(registry_.LookupEntryByPath(path + "/") == 0, "a path does not end in a slash");
  }

  void CheckProperties(RegistryEntry entry) {
    CheckProperty(entry, "no entry has this key");
    for (const auto below : FirstFew(SubtreeOf(plane_, entry))) {
      for (const auto& property : FirstFew(EntryOf(recording_, below).properties.Entries())) {
        CheckProperty(entry, property.key);
      }
    }
  }

  void CheckProperty(RegistryEntry entry, std::string_view key) {
    const auto own = FirstWithKey(recording_, {entry}, key);
    Require(Same(registry_.GetProperty(entry, key), own), "a property is the entry's own");
    Require(Same(registry_.SearchProperty(entry, name_, key, 0), own), "only bit 0 searches below");
    Require(Same(registry_.SearchProperty(entry, name_, key, SearchRecursively),
                 FirstWithKey(recording_, SubtreeOf(plane_, entry), key)),
            "a search finds the first below");
  }

  const Recording& recording_;
  const std::string name_;
  const RecordedPlane& plane_;
  RecordedRegistry& registry_;
};

Entries EntriesOf(RecordedRegistry& registry, RegistryEntry iterator) {
  Entries entries;
  while (const auto entry = registry.NextEntry(iterator)) entries.push_back(entry);
  return entries;
}

void CheckMatching(const Recording& recording, RecordedRegistry& registry,
                   std::string_view className) {
  RegistryEntry iterator = 0;
  Require(registry.MatchServicesByClass(className, iterator) == RegistrySuccess,
          "a class can be matched");
  registry.ResetIterator(iterator);
  const auto expected = ServicesOfClass(recording, className);
  Require(EntriesOf(registry, iterator) == expected, "the services of a class come in their order");
  Require(registry.NextEntry(iterator) == 0, "what is exhausted stays so");
  registry.ResetIterator(iterator);
  Require(EntriesOf(registry, iterator) == expected, "a rewound iterator begins again");
  registry.ReleaseEntry(iterator);
  for (const auto entry : FirstFew(expected)) {
    Require(registry.ConformsToClass(entry, className), "a service conforms to its class");
  }
}

std::set<std::string_view> ClassesOf(const Recording& recording) {
  std::set<std::string_view> classes{"", "no such class"};
  for (const auto& entry : FirstFew(recording.entries)) classes.insert(entry.className);
  for (const auto& [name, superclass] : FirstFew(recording.superclasses)) {
    classes.insert({name, superclass});
  }
  return classes;
}

void CheckNothingAt(RecordedRegistry& registry, RegistryEntry handle) {
  RegistryEntry parent = handle;
  Require(registry.GetParentEntry(handle, "IOService", parent) != RegistrySuccess && parent == 0,
          "no entry has no parent");
  Require(!registry.GetProperty(handle, "Name"), "no entry has no property");
  Require(!registry.SearchProperty(handle, "IOService", "Name", SearchRecursively),
          "nothing is found below no entry");
  Require(!registry.ConformsToClass(handle, ""), "no entry conforms to no class");
  registry.ResetIterator(handle);
  Require(registry.NextEntry(handle) == 0, "no iterator has no entry");
}

}  // namespace

void CheckWellFormed(const Recording& recording) {
  CheckClassChainsEnd(recording);
  for (const auto& [name, plane] : recording.planes) CheckPlane(recording, name, plane);
}

void CheckOperations(const Recording& recording) {
  RecordedRegistry registry(recording);
  CheckNothingAt(registry, 0);
  CheckNothingAt(registry, static_cast<RegistryEntry>(recording.entries.size() + 1));
  for (const auto& [name, plane] : recording.planes) {
    PlaneProperties(recording, name, registry).CheckAll();
  }
  for (const auto& name : ClassesOf(recording)) CheckMatching(recording, registry, name);
}

}  // namespace fernwick::fuzz
