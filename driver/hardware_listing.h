#pragma once

#include <optional>
#include <string>

#include "platform/console.h"
#include "platform/fault.h"
#include "registry/board_identity.h"
#include "registry/registry.h"

namespace fernwick {

// For verbose output only.

/// The board's identity and where its personalities are searched.
void PrintHeader(Console& console, const BoardIdentity& identity,
                 const std::optional<std::string>& personalitiesDirectory);

/// The current hardware: the port controllers or, where there are none, the Thunderbolt
/// controllers. A fault of an inventory, before anything is printed.
std::optional<Fault> PrintHardware(Console& console, Registry& registry);

}  // namespace fernwick
