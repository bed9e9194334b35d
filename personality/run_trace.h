#pragma once

#include <cstddef>
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

/// One top-level key of the configuration: the inventory collected for it and which personality
/// each of its controllers matched, by the index in the array. The single personality of
/// "LegacyUSBC" has the index 0. Only the first match of a controller is stored, from which the
/// outcomes of all its pairs follow: memory is linear in controllers and personalities.
struct KeyTrace {
  static constexpr std::size_t NoMatch = ~std::size_t{0};  // after every candidate

  std::string key;  // of its own: after a fault there is no configuration that it could view
  HardwareInventory inventory = {};       // not stored for a key that names no type
  std::vector<bool> isPersonality = {};   // by candidate: whether it is a dictionary
  std::vector<std::size_t> matched = {};  // by record: the candidate that it matched, or NoMatch

  /// Whether candidates were tried: the key names a type, its value has the shape that the type
  /// needs, and there is a controller.
  bool HasPairs() const { return !matched.empty(); }

  /// REQUIRES: both exist, and there are pairs.
  PairOutcome OutcomeOf(std::size_t record, std::size_t candidate) const {
    if (candidate == matched[record]) return PairOutcome::Matched;
    if (candidate > matched[record]) return PairOutcome::NotReached;
    return isPersonality[candidate] ? PairOutcome::Rejected : PairOutcome::NotAPersonality;
  }
};

/// Why a run decided as it did, filled while it decides. The tool itself uses none. The records
/// view the registry, which must outlive it; nothing in it views the configuration.
struct RunTrace {
  std::vector<KeyTrace> keys = {};  // in the order of the file
};

}  // namespace fernwick
