#include "lab/support/messages.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "value/unicode/printable.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {

int UnreadableStatus(const Error& error) {
  switch (error.systemError) {
    case EMFILE:
    case ENFILE:
    case ENOMEM: return LabStatus::OutOfResources;
    default: return LabStatus::UnreadableInput;
  }
}

LabError PathFailure(const std::string& path, int systemError) {
  const Error error = {.message = path + ": " + std::strerror(systemError),
                       .systemError = systemError};
  return {error, UnreadableStatus(error)};
}

namespace {

// `isKept` says which characters are kept although they act on the text.
template <typename IsKept>
std::string Escaped(std::string_view text, IsKept isKept) {
  std::string printable;
  while (!text.empty()) {
    const auto [character, length] = DecodeUtf8(text);
    if (length == 0) {
      AppendOctalEscape(printable, static_cast<unsigned char>(text.front()));
    } else if (!ActsOnText(character) || isKept(character)) {
      printable += text.substr(0, length);
    } else if (IsControlCharacter(character)) {
      AppendOctalEscape(printable, character);
    } else {
      AppendUnicodeEscape(printable, character);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return printable;
}

}  // namespace

bool ActsOnText(char32_t character) {
  return IsControlCharacter(character) || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

void AppendUnicodeEscape(std::string& text, char32_t code) {
  char escape[8];
  std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(code));
  text += escape;
}

std::string PrintableText(std::string_view text) {
  return Escaped(text, [](char32_t) { return false; });
}

std::string PrintableLines(std::string_view text) {
  return Escaped(text, [](char32_t character) { return character == '\n' || character == '\t'; });
}

void PrintError(std::string_view message) {
  ProcessConsole().WriteError("fernwick-lab: " + PrintableText(message) + "\n");
}

int PrintError(const std::string& path, const LabError& error) {
  PrintError(path + ": " + Describe(error.error));
  return error.status;
}

int PrintError(const LabError& error) {
  PrintError(Describe(error.error));
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
