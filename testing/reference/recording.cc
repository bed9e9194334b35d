#include "testing/reference/recording.h"

namespace fernwick::testing::reference {
namespace {

void AppendSubtree(const RecordedPlane& plane, RegistryEntry entry, Entries& entries) {
  entries.push_back(entry);
  for (const auto child : plane.placements.at(entry).children) AppendSubtree(plane, child, entries);
}

}  // namespace

const RecordedEntry& EntryOf(const Recording& recording, RegistryEntry entry) {
  return recording.entries.at(entry - 1);
}

Entries SubtreeOf(const RecordedPlane& plane, RegistryEntry entry) {
  Entries entries;
  AppendSubtree(plane, entry, entries);
  return entries;
}

std::optional<std::string_view> SuperclassOf(const Recording& recording, std::string_view name) {
  const auto found = recording.superclasses.find(name);
  if (found == recording.superclasses.end()) return std::nullopt;
  return found->second;
}

bool Conforms(const Recording& recording, RegistryEntry entry, std::string_view className) {
  std::optional<std::string_view> name = EntryOf(recording, entry).className;
  if (name->empty()) return false;
  for (; name; name = SuperclassOf(recording, *name)) {
    if (*name == className) return true;
  }
  return false;
}

Entries ServicesOfClass(const Recording& recording, std::string_view className) {
  const auto plane = recording.planes.find("IOService");
  if (plane == recording.planes.end()) return {};
  auto entries = SubtreeOf(plane->second, plane->second.root);
  std::erase_if(entries, [&](auto entry) { return !Conforms(recording, entry, className); });
  return entries;
}

}  // namespace fernwick::testing::reference
