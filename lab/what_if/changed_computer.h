#pragma once

#include <map>
#include <optional>
#include <string_view>

#include "lab/what_if/changes.h"
#include "registry/recorded_registry.h"
#include "value/record.h"
#include "value/result.h"

namespace fernwick::lab {

/// A recorded computer whose properties can be changed: the recording itself, in which the entries
/// that were changed have dictionaries of this object's own. Values are not copied. It can be
/// moved.
class ChangedComputer {
 public:
  explicit ChangedComputer(Recording recording) : recording_(std::move(recording)) {}

  /// The computer as it is now. Changes with the next change.
  const Recording& Recorded() const { return recording_; }

  /// The entry's properties. REQUIRES: it exists.
  Dictionary Properties(RegistryEntry entry) const {
    return recording_.entries[entry - 1].properties;
  }

  /// Replaces the entry's properties. What they view must outlive this. REQUIRES: it exists.
  void SetProperties(RegistryEntry entry, Record properties);

  /// The entry of the NVRAM variables. Where there is none, adds it without properties as the last
  /// child of the root of the device tree. REQUIRES: there is a device tree.
  RegistryEntry BootOptions();

 private:
  Recording recording_;
  std::map<RegistryEntry, Record> changed_;
};

/// Applies the changes of properties and of the board's revision, whose values must outlive the
/// computer. A text for a property that is data, or for the board's identifier, becomes data: its
/// bytes and a zero byte. The entry of the NVRAM variables is added where there is none. Returns
/// why a change cannot be applied: no entry, or several, have the name or path.
std::optional<Error> ApplyChanges(const Changes& changes, ChangedComputer& computer);

/// The path of an entry in the first plane that it is in: "IODeviceTree:/options". REQUIRES: it is
/// in one.
std::string PathInAnyPlane(const Recording& recording, RegistryEntry entry);

}  // namespace fernwick::lab
