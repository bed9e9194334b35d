#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "personality/requirement_recorder.h"
#include "registry/hardware_record.h"
#include "registry/inventory_recorder.h"
#include "value/property_value.h"

namespace fernwick {

/// What became of one personality and one controller.
enum class PairOutcome {
  Matched,
  Rejected,
  NotReached,       // an earlier personality took the controller
  NotAPersonality,  // its value is not a dictionary
};

/// The same, and why.
struct PairDecision {
  PairOutcome outcome;
  std::vector<FailedRequirement> failures = {};  // of a rejected pair; the first one decided

  friend bool operator==(const PairDecision&, const PairDecision&) = default;
};

/// A controller and how each personality of the key fared with it, in the order of the array. The
/// single personality of "LegacyUSBC" is the only one. Empty under a key that names no type and
/// where the value has not the shape that its type needs.
struct ControllerDecisions {
  HardwareRecord controller;
  std::vector<PairDecision> pairs = {};

  friend bool operator==(const ControllerDecisions&, const ControllerDecisions&) = default;
};

/// One top-level key of the configuration, with the inventory that was taken for it.
struct KeyDecisions {
  std::string key;
  std::vector<ControllerDecisions> controllers = {};
  InventoryRecorder inventory = {};

  friend bool operator==(const KeyDecisions&, const KeyDecisions&) = default;
};

/// Learns what the matcher decides, while it decides it. The production run gives none (null).
struct MatchRecorder {
  std::optional<PropertyValue> configuration = {};  // as it was loaded, of whatever kind
  std::vector<KeyDecisions> keys = {};              // in the order of the file
};

}  // namespace fernwick
