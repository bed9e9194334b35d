#include "lab/printable_text.h"

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

}  // namespace fernwick::lab
