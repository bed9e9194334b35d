#pragma once

#include <optional>
#include <vector>

#include "value/property_value.h"

namespace fernwick {

/// One controller found in the registry: what its properties say, under the keys that personalities
/// use. A key whose property is missing or of another kind is simply not there.
using HardwareRecord = Dictionary;

/// The controllers of one kind, in registry order. None instead of an empty list.
using HardwareInventory = std::optional<std::vector<HardwareRecord>>;

}  // namespace fernwick
