#include "lab/messages.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "lab/exit_status.h"
#include "platform/output.h"
#include "value/printable.h"
#include "value/utf8.h"

namespace fernwick::lab {
namespace {

// Bytes that are not UTF-8 (a path may hold any) are escaped one by one.
std::string Printable(std::string_view message) {
  std::string text;
  while (!message.empty()) {
    const auto [character, length] = DecodeUtf8(message);
    if (length == 0) {
      AppendOctalEscape(text, static_cast<unsigned char>(message.front()));
    } else if (IsControlCharacter(character)) {
      AppendOctalEscape(text, character);
    } else {
      text += message.substr(0, length);
    }
    message.remove_prefix(length == 0 ? 1 : length);
  }
  return text;
}

}  // namespace

void PrintError(std::string_view message) {
  std::fprintf(stderr, "fernwick-lab: %s\n", Printable(message).c_str());
}

int PrintResult(std::string_view text) {
  Output out(stdout);
  out.Write(text);
  out.Flush();
  if (out.Error() == 0) return LabStatus::Done;
  PrintError(std::string("standard output could not be written: ") + std::strerror(out.Error()));
  return LabStatus::OutputLost;
}

}  // namespace fernwick::lab
