#pragma once

#include <string_view>

#include "registry/hardware_record.h"
#include "registry/registry.h"

namespace fernwick {

/// The class of USB-C port controllers.
inline constexpr std::string_view PortControllerClass = "QuinceHPMDevice";

/// The computer's own USB-C port controllers: those whose "Route String" is absent or 0. One below
/// a Thunderbolt controller has that one's fields too, and is listed only when its "Address" is
/// absent or 0. From the first port without a "UUID" on, none has a "Port UUID". Each call reads
/// the registry again; nothing is cached. A fault as FillThunderboltFields returns it.
InventoryResult CollectPortControllers(Registry& registry);

}  // namespace fernwick
