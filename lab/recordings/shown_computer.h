#pragma once

#include <optional>
#include <string>

#include "lab/recordings/controllers.h"
#include "lab/support/json_values.h"
#include "registry/board_identity.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// A recorded computer and what the tool reads of it. It views the recording, which must outlive
/// it.
struct ShownComputer {
  const Recording& recording;
  BoardIdentity board;
  Controllers thunderbolt;
  Controllers ports;
};

/// Collects both inventories as a run would. A fault that would end the run is only noted.
ShownComputer Inspect(const Recording& recording);

/// As a text for people, with the plane `wanted` alone or, if it is empty, every plane in the order
/// of their names.
std::string ShowAsText(const ShownComputer& computer, const std::optional<std::string>& wanted);

/// The same in JSON.
Json ShowAsJson(const ShownComputer& computer, const std::optional<std::string>& wanted);

}  // namespace fernwick::lab
