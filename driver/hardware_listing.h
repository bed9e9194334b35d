#pragma once

#include <optional>
#include <string>

#include "platform/output.h"
#include "registry/board_identity.h"
#include "registry/registry.h"

namespace fernwick {

/// Verbose output alone.

/// Who the host is and where its personalities are looked for.
void PrintHeader(Output& out, const BoardIdentity& identity,
                 const std::optional<std::string>& personalitiesDirectory);

/// The current hardware: the port controllers or, where there are none, the Thunderbolt
/// controllers.
void PrintHardware(Output& out, Registry& registry);

}  // namespace fernwick
