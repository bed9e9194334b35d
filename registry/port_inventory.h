#pragma once

#include <string_view>

#include "registry/hardware_record.h"
#include "registry/inventory_recorder.h"
#include "registry/registry.h"

namespace fernwick {

/// The class of USB-C port controllers.
inline constexpr std::string_view PortControllerClass = "QuinceHPMDevice";

/// The computer's own USB-C port controllers: those whose "Route String" is absent or 0. One that
/// sits below a Thunderbolt controller carries that one's fields too, and is listed only when its
/// "Address" is absent or 0. From the first port without a "UUID" on, none has a "Port UUID". Taken
/// afresh each time; ends the process abnormally as FillThunderboltFields does. A recorder learns
/// where each is and changes nothing.
HardwareInventory CollectPortControllers(Registry& registry, InventoryRecorder* recorder = nullptr);

}  // namespace fernwick
