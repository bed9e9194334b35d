#include "lab/survey/short_text.h"

#include "value/unicode/utf8.h"

namespace fernwick::lab {

std::string ShortText(std::string_view text) {
  constexpr std::size_t MaxLength = 512;
  if (text.size() <= MaxLength) return std::string(text);
  return std::string(FirstCharacters(text, MaxLength)) + " (the first of " +
         std::to_string(text.size()) + " bytes)";
}

}  // namespace fernwick::lab
