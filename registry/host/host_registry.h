#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "registry/host/boot_options.h"
#include "registry/host/host_files.h"
#include "registry/host/thunderbolt_bus.h"
#include "registry/registry.h"
#include "value/arena.h"

namespace fernwick {

/// The registry of the Linux computer that the program runs on, from files alone: the device tree
/// or DMI, the kernel's command line, the EFI variables and the Thunderbolt bus. Nothing is
/// written, no program is run, and no privilege is needed: whatever cannot be read is absent. USB-C
/// port controllers do not appear, since Linux does not report their silicon and firmware.
///
/// A property is read from its file each time it is asked for, but three things are listed once,
/// when they are first needed: the children of an entry, the devices of the bus with their "UID",
/// and the names of the EFI variables. Values and handles are valid as long as the registry.
class HostRegistry : public Registry {
 public:
  /// The class of every switch; it derives from ThunderboltControllerClass.
  static constexpr std::string_view SwitchClass = "ThunderboltSwitch";

  /// `root` is the directory that has the computer's files: "/", or a copy of another computer's.
  explicit HostRegistry(const std::string& root = "/") : files_(root) {}

  /// Why a copy has no files; empty when it has. As HostFiles::RootError.
  const std::string& RootError() const { return files_.RootError(); }

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

  // To write the whole registry down. Each needs the handle of an entry.

  /// The children in their order. Valid as long as the registry.
  const std::vector<RegistryEntry>& ChildrenOf(RegistryEntry entry);

  /// Valid as long as the registry.
  const std::string& NameOf(RegistryEntry entry) const;

  /// Empty when the entry conforms to no class.
  std::string_view ClassOf(RegistryEntry entry) const;

  /// The names of all properties that the entry can have: some of them may be absent.
  std::set<std::string> PropertyNamesOf(RegistryEntry entry);

 private:
  enum class Kind { TreeNode, DmiBoard, Options, ServiceRoot, Switch };

  struct Entry {
    Kind kind;
    std::string name;
    std::string path = {};  // of its directory in the device tree; empty: none
    RegistryEntry parent = 0;
    unsigned depth = 0;
    BusSwitch bus = {};  // of a switch
    bool knowsChildren = false;
    std::vector<RegistryEntry> children = {};
  };

  struct Iterator {
    std::vector<RegistryEntry> entries;
    std::size_t next = 0;
  };

  RegistryEntry Add(Entry entry);
  const Entry* EntryOf(RegistryEntry handle) const;
  Iterator* IteratorOf(RegistryEntry handle);
  static std::string_view PlaneOf(const Entry& entry);
  RegistryEntry RootOf(std::string_view plane);
  void FindTreeChildren(RegistryEntry parent);
  void FindSwitches(RegistryEntry root);
  const std::vector<std::string>& EfiFiles();
  std::optional<PropertyValue> FindBelow(RegistryEntry entry, std::string_view key);
  void AppendServices(RegistryEntry entry, std::vector<RegistryEntry>& found);
  std::optional<std::string> ReadTreeFile(const Entry& entry, std::string_view key) const;
  std::optional<PropertyValue> BoardProperty(std::string_view key);
  std::optional<PropertyValue> OptionsProperty(const Entry& entry, std::string_view key);
  std::optional<PropertyValue> KeptData(std::optional<std::string> bytes);

  HostFiles files_;
  Arena arena_;                // of the values
  std::deque<Entry> entries_;  // the one with handle n at n − 1; a deque: they do not move
  std::vector<Iterator> iterators_;
  RegistryEntry treeRoot_ = 0;  // 0 until it is asked for
  RegistryEntry serviceRoot_ = 0;
  std::optional<std::vector<std::string>> efiFiles_;
};

}  // namespace fernwick
