#include "lab/recordings/recording_file.h"

#include <utility>

#include "lab/recordings/host_recording.h"
#include "platform/file_system.h"
#include "registry/recording_reader.h"
#include "value/binary/writer.h"
#include "value/xml/writer.h"

namespace fernwick::lab {

namespace {

Result<Recording, LabError> Interpret(Result<std::string, LabError> bytes, Serialisation* form) {
  if (!bytes) return bytes.Error();
  auto reading = ReadPropertyList(*std::move(bytes));
  if (form != nullptr) *form = reading.serialisation;
  auto recording = InterpretRecording(std::move(reading));
  if (!recording) return LabError{recording.Error(), LabStatus::MalformedInput};
  return *std::move(recording);
}

}  // namespace

Result<Recording, LabError> LoadRecording(const std::string& path, Serialisation* form) {
  auto file = ReadWholeFile(path);
  if (!file) return LabError{file.Error(), LabStatus::UnreadableInput};
  return Interpret(*std::move(file), form);
}

Result<Recording, LabError> LoadRecordingOperand(const std::string& operand, Serialisation* form) {
  return Interpret(ReadInput(operand), form);
}

Argument RecordingArgument(ComputerOperand& computer) {
  return {.name = "RECORDING",
          .target = &computer.recording,
          .help = "the recorded computer; - is standard input"};
}

Argument HostArgument(ComputerOperand& computer) {
  return {.name = "--host",
          .target = &computer.isHost,
          .help = "the computer that this runs on, in place of RECORDING",
          .replaces = "RECORDING"};
}

Result<Recording, LabError> LoadComputer(const ComputerOperand& computer) {
  if (!computer.isHost) return LoadRecordingOperand(computer.recording);
  HostRegistry registry;
  auto recording = InterpretRecording(RecordHost(registry, RecordedProperties::ThoseOfTheTool));
  if (!recording) return LabError{recording.Error(), LabStatus::MalformedInput};
  return *std::move(recording);
}

int WritePropertyList(const std::string& out, const PropertyValue& value, Serialisation form,
                      IfExists ifExists) {
  const auto bytes = form == Serialisation::Binary ? WriteBinaryPropertyList(value)
                                                   : WriteXmlPropertyList(value) + "\n";
  if (bytes.size() > MaxFileSize) {
    return PrintError(
        out, {{"it would be larger than 1 GiB and could not be read"}, LabStatus::OutputLost});
  }
  if (out == "-") return PrintResult(bytes);
  const auto error = WriteOutputFile(out, bytes, ifExists);
  if (error.empty()) return LabStatus::Done;
  return PrintError(out, {{error}, LabStatus::OutputLost});
}

int CheckOutput(const std::string& out, IfExists ifExists) {
  if (out == "-" || ifExists == IfExists::Replace) return LabStatus::Done;
  const auto error = ExistingOutputError(out);
  if (error.empty()) return LabStatus::Done;
  return PrintError(out, {{error}, LabStatus::OutputLost});
}

}  // namespace fernwick::lab
