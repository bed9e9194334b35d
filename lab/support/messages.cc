#include "lab/support/messages.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "value/unicode/printable.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {

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
  std::fprintf(stderr, "fernwick-lab: %s\n", PrintableText(message).c_str());
}

int FinishOutput(Output& out) {
  out.Flush();
  if (out.Error() == 0) return LabStatus::Done;
  PrintError(std::string("standard output could not be written: ") + std::strerror(out.Error()));
  return LabStatus::OutputLost;
}

int PrintResult(std::string_view text) {
  Output out(stdout);
  out.Write(text);
  return FinishOutput(out);
}

}  // namespace fernwick::lab
