#pragma once

#include <optional>
#include <string>

#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// What became of reading a recording from a file.
struct RecordingFile {
  std::optional<Recording> recording;
  std::string error;  // "PATH: what is wrong"; empty when there is a recording
  int status;         // LabStatus: Done, MalformedInput or UnreadableInput
};

/// Reads a recording, which is refused whole when it breaks a rule of the format.
RecordingFile LoadRecording(const std::string& path);

}  // namespace fernwick::lab
