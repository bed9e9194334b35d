#pragma once

#include <optional>
#include <string>

#include "registry/recorded_registry.h"
#include "value/property_list_reader.h"

namespace fernwick {

/// What became of reading a recording.
struct RecordingReading {
  std::optional<Recording> recording;
  std::string error;  // where it breaks which rule; empty when there is a recording
};

/// Reads a recorded registry, version 1, from the bytes of an XML or binary property list. The
/// first fault refuses it whole. A fault of a node is told with the path to the node, such as
/// "Planes/IOService/Children[2]/Children[0]".
RecordingReading ReadRecording(std::string bytes);

/// As above, from what became of reading the property list.
RecordingReading InterpretRecording(const PropertyListReading& reading);

/// As above, from the property list's value.
RecordingReading InterpretRecording(const PropertyValue& value);

}  // namespace fernwick
