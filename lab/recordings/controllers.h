#pragma once

#include <map>
#include <string_view>

#include "registry/hardware_record.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// The controllers of one kind in a recorded computer, and which of them its inventory lists.
struct Controllers {
  std::string_view kind;  // "Thunderbolt controller" or "USB-C port controller"
  // By entry: the number in the inventory, from 1; 0 for a controller that it does not list.
  std::map<RegistryEntry, std::size_t> numbers = {};
  HardwareInventory inventory = {};  // views the recording
  bool endsRun = false;  // collecting the inventory ends the run abnormally: nothing is listed
};

/// The controllers of each kind, as the tool's own inventories find them.
Controllers FindThunderboltControllers(const Recording& recording);
Controllers FindPortControllers(const Recording& recording);

}  // namespace fernwick::lab
