#pragma once

#include <string_view>
#include <vector>

#include "registry/inventory_recorder.h"
#include "registry/registry.h"

namespace fernwick {

/// A key of a record and the registry properties that its value comes from.
struct RecordKey {
  std::string_view key;
  std::string_view portProperty;         // of a port controller; empty: none gives it
  std::string_view thunderboltProperty;  // of a Thunderbolt controller, the port's own or the one
                                         // above it; empty: none gives it
};

/// Every key that a record can hold.
inline constexpr RecordKey RecordKeys[] = {
    {"RID", "RID", "UID"},
    {"Port Silicon Vendor ID", "Vendor ID", ""},
    {"Port Silicon Device ID", "Device ID", ""},
    {"Port Silicon Revision", "Revision ID", ""},
    {"Port OTP Revision", "Revision", ""},
    {"Port Address", "Address", ""},
    {"Version", "Version", "ROM Version"},
    {"Port UUID", "UUID", ""},
    {"Ridge Silicon Vendor ID", "", "Vendor ID"},
    {"Ridge Silicon Device ID", "", "Device ID"},
    {"Ridge Silicon Revision", "", "Revision ID"},
    {"Device Model Name", "", "Device Model Name"},
    {"Device Model ID", "", "Device Model ID"},
    {"Device Model Revision", "", "Device Model Revision"},
    {"Firmware Mode", "", "Firmware Mode"},
    {"Ridge UID", "", "UID"},
    {"Engineering Version", "", "EEPROM Revision"},
};

/// A property of an entry that a value was read from.
struct PropertySource {
  RegistryEntry entry;
  std::string_view property;
  std::string_view conversion;  // what the value is of the property's; empty: the property's value

  friend bool operator==(const PropertySource&, const PropertySource&) = default;
};

/// What the value under the key was read from or, where the record lacks the key, every property
/// that could have given it: none when there is no controller that has it, and for a key that no
/// record holds. "RID" of a port is its own or else from its Thunderbolt controller; "Version" is
/// that one's where it tells any, and then comes from two properties.
std::vector<PropertySource> SourcesOf(std::string_view key, const RecordSource& source);

}  // namespace fernwick
