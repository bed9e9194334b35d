// Entries are made when something asks for them: the root of a plane by its path, the children of
// an entry by a search or a path through it. Handles count entries in that order. A property is
// read from its file when it is asked for, except for the "UID", which is read with the list of the
// devices: a run that finds no Thunderbolt bus opens about one file for each property it asks for.

#include "registry/host/host_registry.h"

#include <algorithm>
#include <utility>

#include "registry/board_identity.h"
#include "registry/host/file_text.h"
#include "registry/host/limits.h"
#include "registry/path_lookup.h"
#include "registry/thunderbolt_inventory.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr char RootName[] = "Root";
constexpr char OptionsName[] = "options";

constexpr char TreeDirectory[] = "proc/device-tree";
constexpr char DmiDirectory[] = "sys/class/dmi/id/";

// Directories deeper in the device tree are left out. Real trees have less than twenty levels; a
// property list cannot have more than some 250 nodes in each other.
constexpr unsigned MaxTreeDepth = 200;

// Handles of iterators are above all of entries.
constexpr RegistryEntry FirstIterator = 0x80000000;

bool IsServiceClass(std::string_view className) {
  return className == HostRegistry::SwitchClass || className == ThunderboltControllerClass;
}

// Names of files can be any bytes; those of entries and properties are texts.
bool IsText(std::string_view name) {
  return FindInvalidText(name) == npos;
}

}  // namespace

RegistryEntry HostRegistry::Add(Entry entry) {
  entries_.push_back(std::move(entry));
  return static_cast<RegistryEntry>(entries_.size());
}

const HostRegistry::Entry* HostRegistry::EntryOf(RegistryEntry handle) const {
  if (handle == 0 || handle > entries_.size()) return nullptr;
  return &entries_[handle - 1];
}

HostRegistry::Iterator* HostRegistry::IteratorOf(RegistryEntry handle) {
  if (handle < FirstIterator || handle - FirstIterator >= iterators_.size()) return nullptr;
  return &iterators_[handle - FirstIterator];
}

RegistryEntry HostRegistry::RootOf(std::string_view plane) {
  if (plane == ServicePlane) {
    if (serviceRoot_ == 0) serviceRoot_ = Add({.kind = Kind::ServiceRoot, .name = RootName});
    return serviceRoot_;
  }
  if (plane != DeviceTreePlane) return 0;
  if (treeRoot_ != 0) return treeRoot_;
  treeRoot_ = files_.IsDirectory(TreeDirectory)
                  ? Add({.kind = Kind::TreeNode, .name = RootName, .path = TreeDirectory})
                  : Add({.kind = Kind::DmiBoard, .name = RootName});
  return treeRoot_;
}

const std::vector<RegistryEntry>& HostRegistry::ChildrenOf(RegistryEntry handle) {
  auto& entry = entries_[handle - 1];
  if (!std::exchange(entry.knowsChildren, true)) {
    if (entry.kind == Kind::ServiceRoot) {
      FindSwitches(handle);
    } else {
      FindTreeChildren(handle);
    }
  }
  return entry.children;
}

// "options" is added last where the device tree has no directory of that name.
void HostRegistry::FindTreeChildren(RegistryEntry parent) {
  auto& entry = entries_[parent - 1];
  const auto add = [&](Kind kind, const std::string& name, const std::string& path) {
    entry.children.push_back(Add(
        {.kind = kind, .name = name, .path = path, .parent = parent, .depth = entry.depth + 1}));
  };
  bool hasOptions = parent != treeRoot_;
  if (!entry.path.empty() && entry.depth < MaxTreeDepth) {
    for (const auto& name : files_.List(entry.path).directories) {
      if (!IsText(name)) continue;
      const bool isOptions = parent == treeRoot_ && name == OptionsName;
      hasOptions = hasOptions || isOptions;
      add(isOptions ? Kind::Options : Kind::TreeNode, name, entry.path + "/" + name);
    }
  }
  if (!hasOptions) add(Kind::Options, OptionsName, "");
}

// A switch comes after its parent.
void HostRegistry::FindSwitches(RegistryEntry root) {
  std::vector<RegistryEntry> handles;
  for (auto& bus : ListSwitches(files_)) {
    const auto parent = bus.parent ? handles[*bus.parent] : root;
    const auto name = bus.name;
    handles.push_back(Add({.kind = Kind::Switch,
                           .name = name,
                           .parent = parent,
                           .bus = std::move(bus),
                           .knowsChildren = true}));
    entries_[parent - 1].children.push_back(handles.back());
  }
}

RegistryEntry HostRegistry::LookupEntryByPath(std::string_view path) {
  const auto childNamed = [this](RegistryEntry parent, std::string_view name) {
    const auto& children = ChildrenOf(parent);
    const auto isNamed = [&](RegistryEntry child) { return NameOf(child) == name; };
    const auto child = std::ranges::find_if(children, isNamed);
    return child == children.end() ? RegistryEntry{0} : *child;
  };
  return LookupByPath(
      path, [this](std::string_view plane) { return RootOf(plane); }, childNamed);
}

const std::string& HostRegistry::NameOf(RegistryEntry entry) const {
  return entries_[entry - 1].name;
}

std::string_view HostRegistry::ClassOf(RegistryEntry entry) const {
  return entries_[entry - 1].kind == Kind::Switch ? SwitchClass : "";
}

std::optional<PropertyValue> HostRegistry::GetProperty(RegistryEntry handle, std::string_view key) {
  const auto* entry = EntryOf(handle);
  if (entry == nullptr) return std::nullopt;
  switch (entry->kind) {
    case Kind::TreeNode: return KeptData(ReadTreeFile(*entry, key));
    case Kind::DmiBoard: return BoardProperty(key);
    case Kind::Options: return OptionsProperty(*entry, key);
    case Kind::Switch: return ReadSwitchProperty(files_, entry->bus, key, arena_);
    default: return std::nullopt;
  }
}

std::optional<PropertyValue> HostRegistry::KeptData(std::optional<std::string> bytes) {
  if (!bytes) return std::nullopt;
  return Data{arena_.Adopt(*std::move(bytes))};
}

// REQUIRES: an entry with a directory.
std::optional<std::string> HostRegistry::ReadTreeFile(const Entry& entry,
                                                      std::string_view key) const {
  using namespace std::string_view_literals;
  if (key.find_first_of("/\0"sv) != npos) return std::nullopt;  // not the name of a file
  return files_.Read(entry.path + "/" + std::string(key), MaxTreeFile, HostFiles::Links::Ignored);
}

// A name is part of paths in a payload.
std::optional<PropertyValue> HostRegistry::BoardProperty(std::string_view key) {
  const auto read = [&](const char* file) {
    const auto text = files_.Read(std::string(DmiDirectory) + file, MaxSystemFile);
    return std::string(text ? Trimmed(*text) : "");
  };
  if (key == "board-id") {
    auto name = read("board_name");
    if (name.empty()) return std::nullopt;
    std::ranges::replace(name, '/', '_');
    return KeptData(name + '\0');
  }
  if (key != "board-rev") return std::nullopt;
  const auto revision = ParseDigits(read("board_version"), 10);
  if (!revision || *revision > 255) return std::nullopt;
  return KeptData(std::string(1, static_cast<char>(*revision)));
}

// The node's own property, the command line, or else an EFI variable.
std::optional<PropertyValue> HostRegistry::OptionsProperty(const Entry& entry,
                                                           std::string_view key) {
  if (!entry.path.empty()) {
    if (const auto own = KeptData(ReadTreeFile(entry, key))) return own;
  }
  if (key == "boot-args") {
    auto arguments = ReadBootArguments(files_);
    if (!arguments) return std::nullopt;
    return arena_.Adopt(*std::move(arguments));
  }
  const auto* file = FindEfiFile(EfiFiles(), key);
  return file == nullptr ? std::nullopt : KeptData(ReadEfiVariable(files_, *file));
}

const std::vector<std::string>& HostRegistry::EfiFiles() {
  if (!efiFiles_) efiFiles_ = ListEfiFiles(files_);
  return *efiFiles_;
}

std::optional<PropertyValue> HostRegistry::SearchProperty(RegistryEntry entry,
                                                          std::string_view plane,
                                                          std::string_view key,
                                                          std::uint32_t options) {
  auto own = GetProperty(entry, key);
  const auto* found = EntryOf(entry);
  if (own || (options & SearchRecursively) == 0 || found == nullptr) return own;
  return PlaneOf(*found) == plane ? FindBelow(entry, key) : std::nullopt;
}

std::optional<PropertyValue> HostRegistry::FindBelow(RegistryEntry entry, std::string_view key) {
  for (const RegistryEntry child : ChildrenOf(entry)) {
    auto value = GetProperty(child, key);
    if (!value) value = FindBelow(child, key);
    if (value) return value;
  }
  return std::nullopt;
}

std::string_view HostRegistry::PlaneOf(const Entry& entry) {
  const bool isService = entry.kind == Kind::ServiceRoot || entry.kind == Kind::Switch;
  return isService ? ServicePlane : DeviceTreePlane;
}

RegistryStatus HostRegistry::GetParentEntry(RegistryEntry entry, std::string_view plane,
                                            RegistryEntry& parent) {
  const auto* found = EntryOf(entry);
  parent = found != nullptr && PlaneOf(*found) == plane ? found->parent : 0;
  return parent == 0 ? RegistryNotFound : RegistrySuccess;
}

// Only switches have a class: for another one the bus need not be read.
RegistryStatus HostRegistry::MatchServicesByClass(std::string_view className,
                                                  RegistryEntry& iterator) {
  std::vector<RegistryEntry> services;
  if (IsServiceClass(className)) AppendServices(RootOf(ServicePlane), services);
  iterators_.push_back({std::move(services)});
  iterator = FirstIterator + static_cast<RegistryEntry>(iterators_.size() - 1);
  return RegistrySuccess;
}

// Everything below the root is a switch.
void HostRegistry::AppendServices(RegistryEntry entry, std::vector<RegistryEntry>& found) {
  for (const RegistryEntry child : ChildrenOf(entry)) {
    found.push_back(child);
    AppendServices(child, found);
  }
}

void HostRegistry::ResetIterator(RegistryEntry iterator) {
  if (auto* found = IteratorOf(iterator)) found->next = 0;
}

RegistryEntry HostRegistry::NextEntry(RegistryEntry iterator) {
  auto* found = IteratorOf(iterator);
  if (found == nullptr || found->next == found->entries.size()) return 0;
  return found->entries[found->next++];
}

bool HostRegistry::ConformsToClass(RegistryEntry entry, std::string_view className) {
  const auto* found = EntryOf(entry);
  return found != nullptr && found->kind == Kind::Switch && IsServiceClass(className);
}

// Handles stay valid; there is nothing to release.
void HostRegistry::ReleaseEntry(RegistryEntry) {}

std::set<std::string> HostRegistry::PropertyNamesOf(RegistryEntry handle) {
  const auto& entry = entries_[handle - 1];
  if (entry.kind == Kind::DmiBoard) return {"board-id", "board-rev"};
  if (entry.kind == Kind::Switch) return SwitchPropertyNames();
  std::set<std::string> names;
  const auto add = [&](std::string_view name) {
    if (!name.empty() && IsText(name)) names.emplace(name);
  };
  if (!entry.path.empty()) {
    for (const auto& name : files_.List(entry.path).files) add(name);
  }
  if (entry.kind == Kind::Options) {
    add("boot-args");
    for (const auto& file : EfiFiles()) add(EfiVariableOf(file));
  }
  return names;
}

}  // namespace fernwick
