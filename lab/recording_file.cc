#include "lab/recording_file.h"

#include <utility>

#include "lab/exit_status.h"
#include "platform/file_system.h"
#include "registry/recording_reader.h"

namespace fernwick::lab {

RecordingFile LoadRecording(const std::string& path) {
  auto file = ReadWholeFile(path);
  if (!file.bytes) return {{}, path + ": " + file.error, LabStatus::UnreadableInput};
  auto reading = ReadRecording(*std::move(file.bytes));
  if (!reading.recording) return {{}, path + ": " + reading.error, LabStatus::MalformedInput};
  return {std::move(reading.recording), {}, LabStatus::Done};
}

}  // namespace fernwick::lab
