#pragma once

#include <string>

#include "registry/recorded_registry.h"
#include "value/property_list_reader.h"
#include "value/result.h"

namespace fernwick {

/// Reads a recorded registry, version 1, from the bytes of an XML or binary property list. The
/// first fault refuses it whole. The error of a node names the path to the node, such as
/// "Planes/IOService/Children[2]/Children[0]".
Result<Recording> ReadRecording(std::string bytes);

/// As above, from the result of reading the property list.
Result<Recording> InterpretRecording(PropertyListReading reading);

/// As above, from a property list of a serialisation that a recording may have.
Result<Recording> InterpretRecording(PropertyList list);

}  // namespace fernwick
