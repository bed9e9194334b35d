#include "value/unicode/printable.h"

namespace fernwick {

bool IsControlCharacter(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

void AppendOctalEscape(std::string& text, char32_t code) {
  text += '\\';
  for (const unsigned shift : {6u, 3u, 0u}) text += static_cast<char>('0' + (code >> shift & 7));
}

}  // namespace fernwick
