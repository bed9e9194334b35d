#include "lab/survey/short_text.h"

namespace fernwick::lab {

std::string ShortText(std::string_view text) {
  constexpr std::size_t MaxLength = 512;
  if (text.size() <= MaxLength) return std::string(text);
  auto length = MaxLength;
  while ((text[length] & 0xC0) == 0x80) --length;  // not inside a character
  return std::string(text.substr(0, length)) + " (the first of " + std::to_string(text.size()) +
         " bytes)";
}

}  // namespace fernwick::lab
