#pragma once

#include <cstdint>
#include <string_view>

#include "registry/hardware_record.h"
#include "registry/inventory_recorder.h"
#include "registry/registry.h"

namespace fernwick {

/// The class of Thunderbolt controllers.
inline constexpr std::string_view ThunderboltControllerClass = "IOThunderboltSwitch";

/// The fault of a controller without "UID".
inline constexpr char MissingUidFault[] = "a Thunderbolt controller has no UID";

/// The computer's own Thunderbolt controllers: those at the root of the topology, with "Depth" and
/// "Route String" 0. Controllers of devices plugged in by cable sit deeper. Taken afresh each time;
/// ends the process abnormally as FillThunderboltFields does. A recorder learns where each is and
/// changes nothing.
HardwareInventory CollectThunderboltControllers(Registry& registry,
                                                InventoryRecorder* recorder = nullptr);

/// Writes what the controller's own properties say into `record`, replacing what stands there save
/// "RID". Without a record (null) it does nothing. A controller without "UID" ends the process
/// abnormally: no real one lacks it, and a record must never hold an absent value. `source` learns
/// what comes from the controller.
void FillThunderboltFields(Registry& registry, RegistryEntry controller, HardwareRecord* record,
                           RecordSource* source = nullptr);

/// The installed version that a controller with these "ROM Version" and "EEPROM Revision" is held
/// to have. The major version is packed BCD, the minor one hundredths from 0 to 63. The added 1e-9
/// belongs to it: 41.05 is held as 41.050000000999994, and an "Existing Max Version" of 41.05
/// rejects it.
double ThunderboltFirmwareVersion(std::uint32_t rom, std::uint32_t eeprom);

}  // namespace fernwick
