#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "value/property_list_reader.h"
#include "value/result.h"

namespace fernwick::lab {

/// The keys under which a dump has what is not a property of an entry.
struct DumpKeys {
  std::string name;
  std::string children;
  std::optional<std::string> className = {};
  std::optional<std::string> id = {};
};

/// One plane as nested dictionaries, from its root down.
struct DumpedPlane {
  std::string name;
  PropertyList list;
};

/// Which dump cannot be used, and why: the message names the path to the entry.
struct DumpError {
  std::size_t plane;  // index
  std::string message;
};

/// The dumps as a recording, with `classes` as its classes where there are any, which are not
/// checked; otherwise it is well-formed. An entry of several planes, by its identity, is defined in
/// the first of them and a link in the others, where its name, class and properties are ignored. An
/// identity is a string or an integer; an integer is the same as its decimal digits. The result
/// views the values of the dumps. REQUIRES: planes of different names that a recording can have,
/// and different keys.
Result<PropertyList, DumpError> RecordDumps(std::span<const DumpedPlane> planes,
                                            const DumpKeys& keys,
                                            const std::optional<PropertyValue>& classes);

}  // namespace fernwick::lab
