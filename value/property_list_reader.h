#pragma once

#include <optional>
#include <string>

#include "value/property_value.h"
#include "value/value_places.h"

namespace fernwick {

/// The serialisations of a property list, with the codes by which diagnostics name them.
enum class Serialisation : unsigned long {
  None = 0,  // an empty file has none
  Text = 1,  // the old text form
  Xml = 100,
  Binary = 200,
};

/// What became of reading a property list.
struct PropertyListReading {
  std::optional<PropertyValue> value;
  std::string error;            // what is wrong and where; empty when there is a value
  Serialisation serialisation;  // as detected, also when there is no value
};

/// Detects the serialisation from the content alone and reads the one value that `bytes` hold. The
/// value shares the buffer. No input of any size or depth makes it crash or hang. A recorder learns
/// where each value stands.
PropertyListReading ReadPropertyList(std::string bytes, PlaceRecorder* places = nullptr);

}  // namespace fernwick
