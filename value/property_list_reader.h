#pragma once

#include <string>

#include "value/arena.h"
#include "value/property_value.h"
#include "value/result.h"
#include "value/value_locations.h"

namespace fernwick {

/// The serialisations of a property list, with the codes by which diagnostics name them.
enum class Serialisation : unsigned long {
  None = 0,  // an empty file has none
  Text = 1,  // the old text form
  Xml = 100,
  Binary = 200,
};

/// A property list that was read: its one value and the memory that the value views. The value
/// stays valid when the list is moved.
struct PropertyList {
  Arena arena;
  PropertyValue value;
};

/// A property list, or what is wrong with it and where.
struct PropertyListReading {
  Serialisation serialisation;  // as detected, also when there is no list
  Result<PropertyList> list;
};

/// Detects the serialisation from the content alone and reads the one value in `bytes`, which the
/// list owns from then on. No input of any size or depth makes it crash or hang. `locations` may be
/// null.
PropertyListReading ReadPropertyList(std::string bytes, LocationBuilder* locations = nullptr);

}  // namespace fernwick
