// An overlay by copy-on-write: an entry that is changed gets a dictionary of its own, whose keys
// and values view what they viewed. A change costs the number of the entry's properties; a name is
// searched in all entries, a path step by step among the children.

#include "lab/what_if/changed_computer.h"

#include <string>
#include <utility>
#include <vector>

#include "driver/bypass_switch.h"
#include "lab/recordings/entry_path.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

constexpr std::string_view OptionsName = "options";

std::vector<RegistryEntry> EntriesNamed(const Recording& recording, std::string_view name) {
  std::vector<RegistryEntry> found;
  for (std::size_t i = 0; i < recording.entries.size(); ++i) {
    if (recording.entries[i].name == name) found.push_back(static_cast<RegistryEntry>(i + 1));
  }
  return found;
}

// All entries with that path, since siblings may share a name. `steps` begins with "/".
std::vector<RegistryEntry> EntriesAt(const Recording& recording, const RecordedPlane& plane,
                                     std::string_view steps) {
  std::vector<RegistryEntry> reached = {plane.root};
  if (steps == "/") return reached;
  while (!steps.empty()) {
    steps.remove_prefix(1);
    const auto step = steps.substr(0, steps.find('/'));
    std::vector<RegistryEntry> next;
    for (const auto parent : reached) {
      for (const auto child : plane.placements.at(parent).children) {
        if (recording.entries[child - 1].name == step) next.push_back(child);
      }
    }
    reached = std::move(next);
    steps.remove_prefix(step.size());
  }
  return reached;
}

// By a path, "PLANE:/a/b", or else by the name, which has no "/".
std::vector<RegistryEntry> FindEntries(const Recording& recording, std::string_view text) {
  const auto colon = text.find(":/");
  if (colon == std::string_view::npos) return EntriesNamed(recording, text);
  const auto plane = recording.planes.find(text.substr(0, colon));
  if (plane == recording.planes.end()) return {};
  return EntriesAt(recording, plane->second, text.substr(colon + 1));
}

std::string PathsOf(const Recording& recording, const std::vector<RegistryEntry>& entries) {
  constexpr std::size_t MaxPaths = 8;
  std::string paths;
  for (std::size_t i = 0; i < entries.size() && i < MaxPaths; ++i) {
    paths += (i == 0 ? "" : ", ") + PathInAnyPlane(recording, entries[i]);
  }
  if (entries.size() <= MaxPaths) return paths;
  return paths + " and " + std::to_string(entries.size() - MaxPaths) + " more";
}

Error NotOneEntry(const Recording& recording, const std::string& text,
                  const std::vector<RegistryEntry>& entries) {
  if (entries.empty()) return {.message = "--set: there is no entry " + text};
  return {.message =
              "--set: there are several entries " + text + ": " + PathsOf(recording, entries)};
}

void SetProperty(ChangedComputer& computer, RegistryEntry entry, std::string_view property,
                 const PropertyValue* value) {
  Record properties(computer.Properties(entry));
  properties.SetOrRemove(property, value);
  computer.SetProperties(entry, std::move(properties));
}

// A computer without NVRAM variables may lack their entry.
std::vector<RegistryEntry> FindOrAddEntries(const std::string& text, ChangedComputer& computer) {
  auto entries = FindEntries(computer.Recorded(), text);
  const bool isOptions = text == BootOptionsPath || text == OptionsName;
  if (!entries.empty() || !isOptions || !computer.Recorded().planes.contains(DeviceTreePlane)) {
    return entries;
  }
  return {computer.BootOptions()};
}

bool IsDataIn(Dictionary properties, std::string_view property) {
  const auto* recorded = properties.Find(property);
  return property == BoardIdentifierProperty || (recorded != nullptr && recorded->AsData());
}

std::optional<Error> Apply(const PropertyChange& change, ChangedComputer& computer) {
  const auto entries = FindOrAddEntries(change.entry, computer);
  if (entries.size() != 1) return NotOneEntry(computer.Recorded(), change.entry, entries);
  const PropertyValue bytes = Data{change.bytes};
  const auto* value = change.value ? &change.value->value : nullptr;
  const bool isData = IsDataIn(computer.Properties(entries.front()), change.property);
  if (isData && value != nullptr && value->AsString()) value = &bytes;
  SetProperty(computer, entries.front(), change.property, value);
  return std::nullopt;
}

// At the root, where the tool searches first.
std::optional<Error> ApplyRevision(std::string_view revision, ChangedComputer& computer) {
  const auto plane = computer.Recorded().planes.find(DeviceTreePlane);
  if (plane == computer.Recorded().planes.end()) {
    return Error{.message = "--board-revision: the computer has no device tree"};
  }
  const PropertyValue value = Data{revision};
  SetProperty(computer, plane->second.root, BoardRevisionProperty, &value);
  return std::nullopt;
}

}  // namespace

void ChangedComputer::SetProperties(RegistryEntry entry, Record properties) {
  auto& own = changed_[entry];
  own = std::move(properties);
  recording_.entries[entry - 1].properties = own;
}

RegistryEntry ChangedComputer::BootOptions() {
  const auto known = RecordedRegistry(recording_).LookupEntryByPath(BootOptionsPath);
  if (known != 0) return known;
  recording_.entries.push_back({.name = OptionsName, .className = {}, .properties = {}});
  const auto entry = static_cast<RegistryEntry>(recording_.entries.size());
  auto& changed = recording_.planes.at(DeviceTreePlane);
  changed.placements.at(changed.root).children.push_back(entry);
  changed.placements[entry].parent = changed.root;
  return entry;
}

std::optional<Error> ApplyChanges(const Changes& changes, ChangedComputer& computer) {
  for (const auto& change : changes.properties) {
    if (auto error = Apply(change, computer)) return error;
  }
  if (!changes.boardRevision) return std::nullopt;
  return ApplyRevision(*changes.boardRevision, computer);
}

std::string PathInAnyPlane(const Recording& recording, RegistryEntry entry) {
  auto plane = recording.planes.begin();
  while (!plane->second.placements.contains(entry)) ++plane;
  return EntryPath(recording, plane->first, entry);
}

}  // namespace fernwick::lab
