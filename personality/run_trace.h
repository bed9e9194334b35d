#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "registry/hardware_record.h"

namespace fernwick {

/// The result of one personality and one controller.
enum class PairOutcome : std::uint8_t {
  Matched,
  Rejected,
  NotReached,       // an earlier personality matched the controller
  NotAPersonality,  // its value is not a dictionary
};

/// One top-level key of the configuration: the inventory collected for it and the outcomes of each
/// of its controllers, one for each personality in the order of the array. The single personality
/// of "LegacyUSBC" is the only one. No outcomes under a key that names no type and where the value
/// does not have the shape that its type needs.
struct KeyTrace {
  std::string key;  // of its own: after a fault there is no configuration that it could view
  HardwareInventory inventory = {};
  std::vector<std::vector<PairOutcome>> outcomes = {};  // of the record with the same index
};

/// Why a run decided as it did, filled while it decides. The tool itself uses none. The records
/// view the registry, which must outlive it; nothing in it views the configuration.
struct RunTrace {
  std::vector<KeyTrace> keys = {};  // in the order of the file
};

}  // namespace fernwick
