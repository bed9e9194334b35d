#include "lab/support/messages.h"

#include <cerrno>
#include <cstring>
#include <string>

#include "value/unicode/printable.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {

int UnreadableStatus(const Error& error) {
  switch (error.systemError) {
    case EMFILE:
    case ENFILE:
    case ENOMEM: return LabStatus::OutOfMemory;
    default: return LabStatus::UnreadableInput;
  }
}

LabError PathFailure(const std::string& path, int systemError) {
  const Error error = {.message = path + ": " + std::strerror(systemError),
                       .systemError = systemError};
  return {error, UnreadableStatus(error)};
}

std::string PrintableText(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const auto [character, length] = DecodeUtf8(text);
    if (length == 0) {
      AppendOctalEscape(printable, static_cast<unsigned char>(text.front()));
    } else if (IsControlCharacter(character)) {
      AppendOctalEscape(printable, character);
    } else {
      printable += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return printable;
}

void PrintError(std::string_view message) {
  ProcessConsole().WriteError("fernwick-lab: " + PrintableText(message) + "\n");
}

int PrintError(const std::string& path, const LabError& error) {
  PrintError(path + ": " + Describe(error.error));
  return error.status;
}

int FinishOutput(Console& console) {
  console.Flush();
  const int error = console.OutputError();
  if (error == 0) return LabStatus::Done;
  PrintError(std::string("standard output could not be written: ") + std::strerror(error));
  return LabStatus::OutputLost;
}

int PrintResult(std::string_view text) {
  ProcessConsole console;
  console.Write(text);
  return FinishOutput(console);
}

}  // namespace fernwick::lab
