#pragma once

#include <string_view>

#include "registry/hardware_record.h"
#include "registry/inventory_recorder.h"
#include "registry/registry.h"

namespace fernwick {

/// The class of Thunderbolt controllers.
inline constexpr std::string_view ThunderboltControllerClass = "IOThunderboltSwitch";

/// The computer's own Thunderbolt controllers: those at the root of the topology, with "Depth" and
/// "Route String" 0. Controllers of devices plugged in by cable sit deeper. Taken afresh each time.
/// A recorder learns where each is and changes nothing.
HardwareInventory CollectThunderboltControllers(Registry& registry,
                                                InventoryRecorder* recorder = nullptr);

/// Writes what the controller's own properties say into `record`, replacing what stands there save
/// "RID". Without a record (null) it does nothing. A controller without "UID" ends the process
/// abnormally: no real one lacks it, and a record must never hold an absent value. `source` learns
/// what comes from the controller.
void FillThunderboltFields(Registry& registry, RegistryEntry controller, HardwareRecord* record,
                           RecordSource* source = nullptr);

}  // namespace fernwick
