#pragma once

#include <optional>
#include <vector>

#include "platform/fault.h"
#include "registry/registry.h"
#include "value/record.h"
#include "value/result.h"

namespace fernwick {

/// One controller found in the registry: its properties under the keys that personalities use. A
/// key whose property is missing or of another kind is not in the record. Its values view the
/// registry, which must outlive it.
using HardwareRecord = Record;

/// Which of the two controllers that describe a port a value was read from.
enum class Origin { None, Port, Thunderbolt };

/// Where the values of one record were read.
struct RecordSource {
  RegistryEntry port = 0;         // 0 in the record of a Thunderbolt controller
  RegistryEntry thunderbolt = 0;  // that controller, or the one above the port; 0: there is none
  Origin rid = Origin::None;
  Origin version = Origin::None;
  bool uuidFetched = true;  // false: an earlier port without one ended "Port UUID" for the pass

  /// The controller that the record is of.
  RegistryEntry Controller() const { return port != 0 ? port : thunderbolt; }

  friend bool operator==(const RecordSource&, const RecordSource&) = default;
};

/// Why a controller of the registry is not listed.
enum class SkipReason {
  NotAtRootOfTopology,      // "Depth" and "Route String" of a Thunderbolt controller are not both 0
  RouteString,              // of a port, is not 0
  AddressBelowThunderbolt,  // of a port, is not 0
};

/// A controller that the inventory does not list.
struct SkippedController {
  RegistryEntry controller;
  SkipReason reason;

  friend bool operator==(const SkippedController&, const SkippedController&) = default;
};

/// The controllers of one kind, in registry order.
struct HardwareInventory {
  std::vector<HardwareRecord> records = {};
  std::vector<RecordSource> sources = {};  // of the record with the same index
  std::vector<SkippedController> skipped = {};

  friend bool operator==(const HardwareInventory&, const HardwareInventory&) = default;
};

/// An inventory, or the fault that ends the run abnormally.
using InventoryResult = Result<HardwareInventory, Fault>;

}  // namespace fernwick
