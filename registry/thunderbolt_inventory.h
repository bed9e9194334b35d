#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "registry/hardware_record.h"
#include "registry/registry.h"

namespace fernwick {

/// The class of Thunderbolt controllers.
inline constexpr std::string_view ThunderboltControllerClass = "IOThunderboltSwitch";

/// The computer's own Thunderbolt controllers: those at the root of the topology, with "Depth" and
/// "Route String" 0. Controllers of devices plugged in by cable are deeper. Each call reads the
/// registry again; nothing is cached. A fault as FillThunderboltFields returns it.
InventoryResult CollectThunderboltControllers(Registry& registry);

/// Writes the controller's own properties into `record`, replacing what is there except "RID", and
/// records in `source` what comes from the controller. A controller without "UID" is a fault: no
/// real one lacks it, and a record must never have an absent value. Without a record (null) nothing
/// is read and nothing is a fault; the inventories always pass one, so that this is a guarantee to
/// other callers only.
std::optional<Fault> FillThunderboltFields(Registry& registry, RegistryEntry controller,
                                           HardwareRecord* record, RecordSource& source);

/// The installed version of a controller with these "ROM Version" and "EEPROM Revision". The major
/// version is packed BCD, the minor one hundredths from 0 to 63. The added 1e-9 is part of
/// it: 41.05 is stored as 41.050000000999994, and an "Existing Max Version" of 41.05 rejects it.
double ThunderboltFirmwareVersion(std::uint32_t rom, std::uint32_t eeprom);

}  // namespace fernwick
