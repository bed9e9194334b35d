#pragma once

#include <optional>
#include <string>

#include "registry/recorded_registry.h"
#include "value/property_list_reader.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// What became of reading a recording from a file.
struct RecordingFile {
  std::optional<Recording> recording;
  std::string error;  // "PATH: what is wrong"; empty when there is a recording
  int status;         // LabStatus: Done, MalformedInput or UnreadableInput
};

/// Reads a recording, which is refused whole when it breaks a rule of the format.
RecordingFile LoadRecording(const std::string& path);

/// A recording as the property list that it is, for verbs that write another.
struct RecordingDocument {
  std::optional<PropertyValue> value;
  Serialisation form;
  std::string error;  // "PATH: what is wrong"; empty when there is a value
  int status;         // LabStatus: Done, MalformedInput or UnreadableInput
};

/// Reads one and holds it to every rule of a recording.
RecordingDocument LoadRecordingDocument(const std::string& path);

/// Writes it whole or not at all, in XML with a newline at the end or in binary. Returns the exit
/// status: LabStatus::Done, or OutputLost after a line on standard error.
int WriteRecordingDocument(const std::string& path, const PropertyValue& value, Serialisation form);

}  // namespace fernwick::lab
