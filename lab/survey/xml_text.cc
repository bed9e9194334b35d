#include "lab/survey/xml_text.h"

#include "lab/support/messages.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {

std::string XmlText(std::string_view text) {
  const auto printable = PrintableText(text);
  std::string escaped;
  for (std::string_view rest = printable; !rest.empty();) {
    const auto [character, length] = DecodeUtf8(rest);
    switch (character) {
      case U'&': escaped += "&amp;"; break;
      case U'<': escaped += "&lt;"; break;
      case U'>': escaped += "&gt;"; break;
      case U'"': escaped += "&quot;"; break;
      default: AppendUtf8(escaped, IsTextCharacter(character) ? character : ReplacementCharacter);
    }
    rest.remove_prefix(length);
  }
  return escaped;
}

}  // namespace fernwick::lab
