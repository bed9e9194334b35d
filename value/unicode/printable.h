#pragma once

#include <string>

namespace fernwick {

/// Whether a terminal may act on the character instead of showing it: U+0000 to U+001F and U+007F
/// to U+009F.
bool IsControlCharacter(char32_t character);

/// Appends a backslash and the code in three octal digits. REQUIRES: code is at most 0777.
void AppendOctalEscape(std::string& text, char32_t code);

}  // namespace fernwick
