#include "lab/recordings/recording_file.h"

#include <utility>

#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "platform/file_system.h"
#include "registry/recording_reader.h"
#include "value/binary/writer.h"
#include "value/xml/writer.h"

namespace fernwick::lab {

RecordingFile LoadRecording(const std::string& path) {
  auto file = ReadWholeFile(path);
  if (!file.bytes) return {{}, path + ": " + file.error, LabStatus::UnreadableInput};
  auto reading = ReadRecording(*std::move(file.bytes));
  if (!reading.recording) return {{}, path + ": " + reading.error, LabStatus::MalformedInput};
  return {std::move(reading.recording), {}, LabStatus::Done};
}

RecordingDocument LoadRecordingDocument(const std::string& path) {
  const auto fail = [&](const std::string& error, int status) {
    return RecordingDocument{{}, Serialisation::None, path + ": " + error, status};
  };
  auto file = ReadWholeFile(path);
  if (!file.bytes) return fail(file.error, LabStatus::UnreadableInput);
  auto reading = ReadPropertyList(*std::move(file.bytes));
  const auto recording = InterpretRecording(reading);
  if (!recording.recording) return fail(recording.error, LabStatus::MalformedInput);
  return {std::move(reading.value), reading.serialisation, {}, LabStatus::Done};
}

int WriteRecordingDocument(const std::string& path, const PropertyValue& value,
                           Serialisation form) {
  const auto error =
      WriteOutputFile(path, form == Serialisation::Binary ? WriteBinaryPropertyList(value)
                                                          : WriteXmlPropertyList(value) + "\n");
  if (error.empty()) return LabStatus::Done;
  PrintError(path + ": " + error);
  return LabStatus::OutputLost;
}

}  // namespace fernwick::lab
