#include "lab/messages.h"

#include <cstdio>
#include <string>

#include "value/utf8.h"

namespace fernwick::lab {
namespace {

bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

void AppendOctal(std::string& text, unsigned byte) {
  char escape[8];
  std::snprintf(escape, sizeof escape, "\\%03o", byte);
  text += escape;
}

// Bytes that are not UTF-8 (a path may hold any) are escaped one by one.
std::string Printable(std::string_view message) {
  std::string text;
  while (!message.empty()) {
    const auto [character, length] = DecodeUtf8(message);
    if (length == 0) {
      AppendOctal(text, static_cast<unsigned char>(message.front()));
    } else if (IsControl(character)) {
      AppendOctal(text, character);
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

}  // namespace fernwick::lab
