#pragma once

#include <cstddef>
#include <string>

#include "lab/support/command_line.h"
#include "lab/support/input_file.h"
#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "platform/file_system.h"
#include "registry/recorded_registry.h"
#include "value/property_list_reader.h"
#include "value/property_value.h"
#include "value/result.h"

namespace fernwick::lab {

/// Reads a recording of at most `maxSize` bytes, which is refused whole when it breaks a rule of
/// the format. Stores its serialisation in `form`, which may be null.
Result<Recording, LabError> LoadRecording(const std::string& path, Serialisation* form = nullptr,
                                          std::size_t maxSize = MaxFileSize);

/// The same from the bytes of a file.
Result<Recording, LabError> LoadRecordingBytes(std::string bytes);

/// The same for an operand of a verb that accepts one recording: "-" is standard input.
Result<Recording, LabError> LoadRecordingOperand(const std::string& operand,
                                                 Serialisation* form = nullptr);

/// The computer that a verb is about: a recorded one, or the one that it runs on.
struct ComputerOperand {
  std::string recording = {};  // its path, or "-"
  bool isHost = false;         // --host, in place of the recording

  /// In messages.
  std::string Name() const { return isHost ? "this computer" : InputName(recording); }
};

/// The operand RECORDING of a verb and the option --host that replaces it, stored in `computer`.
Argument RecordingArgument(ComputerOperand& computer);
Argument HostArgument(ComputerOperand& computer);

/// Reads the recording, or records this computer with the properties that the tool reads.
Result<Recording, LabError> LoadComputer(const ComputerOperand& computer);

/// Writes a property list, in XML with a newline at the end or in binary, to the file `out`,
/// completely or not at all, or to standard output where `out` is "-". Returns the exit status:
/// LabStatus::Done, or OutputLost after a line on standard error, as when it would be larger than a
/// file that can be read again.
int WritePropertyList(const std::string& out, const PropertyValue& value, Serialisation form,
                      IfExists ifExists);

/// Prints an error and returns LabStatus::OutputLost when WritePropertyList would refuse to replace
/// what is at `out`, before any work is done; otherwise LabStatus::Done.
int CheckOutput(const std::string& out, IfExists ifExists);

}  // namespace fernwick::lab
