#include "lab/recordings/recording_file.h"

#include <utility>

#include "lab/recordings/host_recording.h"
#include "lab/support/input_file.h"
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

void Write(const PropertyValue& value, Serialisation form, const TextSink& sink) {
  constexpr std::size_t MaxIndentation = 32;
  if (form == Serialisation::Binary) return sink(WriteBinaryPropertyList(value));
  WriteXmlPropertyList(value, MaxIndentation, sink);
  sink("\n");
}

}  // namespace

Result<Recording, LabError> LoadRecording(const std::string& path, Serialisation* form,
                                          std::size_t maxSize) {
  auto file = ReadWholeFile(path, maxSize);
  if (!file) return LabError{file.Error(), UnreadableStatus(file.Error())};
  return Interpret(*std::move(file), form);
}

Result<Recording, LabError> LoadRecordingBytes(std::string bytes) {
  return Interpret(std::move(bytes), nullptr);
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
  const auto write = [&](const TextSink& sink) { Write(value, form, sink); };
  std::size_t size = 0;
  write([&](std::string_view text) { size += text.size(); });
  if (size > MaxFileSize) {
    return PrintError(
        out, {{"it would be larger than 1 GiB and could not be read"}, LabStatus::OutputLost});
  }
  if (out == "-") {
    ProcessConsole console;
    write([&](std::string_view text) { console.Write(text); });
    return FinishOutput(console);
  }
  const auto error = WriteOutputFile(out, write, ifExists);
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
