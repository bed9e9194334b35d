#pragma once

#include <optional>
#include <string>

#include "lab/recordings/controllers.h"
#include "registry/board_identity.h"
#include "registry/recorded_registry.h"
#include "value/text_sink.h"

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

/// Prints it as a text for people, with the plane `wanted` alone or, if it is empty, every plane in
/// the order of their names.
void PrintComputerText(const ShownComputer& computer, const std::optional<std::string>& wanted,
                       const TextSink& sink);

/// The same in JSON.
void PrintComputerJson(const ShownComputer& computer, const std::optional<std::string>& wanted,
                       const TextSink& sink);

}  // namespace fernwick::lab
