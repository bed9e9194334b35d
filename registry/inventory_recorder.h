#pragma once

#include <vector>

#include "registry/registry.h"

namespace fernwick {

/// Which of the two controllers that describe a port gave a value.
enum class Origin { Nowhere, Port, Thunderbolt };

/// Where the values of one record were read.
struct RecordSource {
  RegistryEntry port = 0;         // 0 in the record of a Thunderbolt controller
  RegistryEntry thunderbolt = 0;  // that controller, or the one above the port; 0 when none is
  Origin rid = Origin::Nowhere;
  Origin version = Origin::Nowhere;
  bool uuidFetched = true;  // false: an earlier port without one ended "Port UUID" for the pass

  /// The controller that the record is of.
  RegistryEntry Controller() const { return port != 0 ? port : thunderbolt; }

  friend bool operator==(const RecordSource&, const RecordSource&) = default;
};

/// Why a controller that is there is not listed.
enum class Omission {
  NotAtRootOfTopology,      // "Depth" and "Route String" of a Thunderbolt controller are not both 0
  RouteString,              // of a port, is not 0
  AddressBelowThunderbolt,  // of a port, is not 0
};

/// A controller that the inventory passed over.
struct OmittedController {
  RegistryEntry controller;
  Omission why;

  friend bool operator==(const OmittedController&, const OmittedController&) = default;
};

/// Learns where an inventory has its records from, while it is taken. The production run gives none
/// (null).
struct InventoryRecorder {
  std::vector<RecordSource> listed = {};  // beside the inventory, record by record
  std::vector<OmittedController> omitted = {};

  friend bool operator==(const InventoryRecorder&, const InventoryRecorder&) = default;
};

/// Tell a recorder, which may be null.
inline void List(const RecordSource& source, InventoryRecorder* recorder) {
  if (recorder != nullptr) recorder->listed.push_back(source);
}
inline void Omit(RegistryEntry controller, Omission why, InventoryRecorder* recorder) {
  if (recorder != nullptr) recorder->omitted.push_back({controller, why});
}

}  // namespace fernwick
