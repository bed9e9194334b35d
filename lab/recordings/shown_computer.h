#pragma once

#include <optional>
#include <string>

#include "lab/recordings/controllers.h"
#include "lab/support/json_values.h"
#include "registry/board_identity.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// What there is to show of a recorded computer. It views the recording, which must outlive it.
struct ShownComputer {
  const Recording& recording;
  BoardIdentity board;
  Controllers thunderbolt;
  Controllers ports;
};

/// Takes both inventories as a run would. A run that would end abnormally does not end this one.
ShownComputer LookAt(const Recording& recording);

/// As a text for people, the plane `wanted` alone or every plane, which then go by name.
std::string ShowAsText(const ShownComputer& computer, const std::optional<std::string>& wanted);

/// The same in JSON.
Json ShowAsJson(const ShownComputer& computer, const std::optional<std::string>& wanted);

}  // namespace fernwick::lab
