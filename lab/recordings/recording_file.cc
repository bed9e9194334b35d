#include "lab/recordings/recording_file.h"

#include <utility>

#include "lab/support/output_file.h"
#include "platform/file_system.h"
#include "registry/recording_reader.h"
#include "value/binary/writer.h"
#include "value/xml/writer.h"

namespace fernwick::lab {

Result<Recording, LabError> LoadRecording(const std::string& path, Serialisation* form) {
  auto file = ReadWholeFile(path);
  if (!file) return LabError{file.Error(), LabStatus::UnreadableInput};
  auto reading = ReadPropertyList(*std::move(file));
  if (form != nullptr) *form = reading.serialisation;
  auto recording = InterpretRecording(std::move(reading));
  if (!recording) return LabError{recording.Error(), LabStatus::MalformedInput};
  return *std::move(recording);
}

int WriteRecording(const std::string& path, const PropertyValue& value, Serialisation form) {
  const auto error =
      WriteOutputFile(path, form == Serialisation::Binary ? WriteBinaryPropertyList(value)
                                                          : WriteXmlPropertyList(value) + "\n");
  if (error.empty()) return LabStatus::Done;
  return PrintError(path, {{error}, LabStatus::OutputLost});
}

}  // namespace fernwick::lab
