#include "value/xml/names.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range NameStarts[] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};

constexpr Range FurtherNameCharacters[] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

template <typename Ranges>
constexpr bool IsIn(const Ranges& ranges, char32_t character) {
  return std::ranges::any_of(ranges, [&](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

constexpr bool IsNameCharacter(char32_t character, bool isFirst) {
  return IsIn(NameStarts, character) || (!isFirst && IsIn(FurtherNameCharacters, character));
}

// For each ASCII character whether it may be in a name after the first character. A table, because
// almost all names are ASCII.
constexpr auto ContinuesName = [] {
  std::array<bool, 0x80> table{};
  for (char32_t c = 0; c < table.size(); ++c) table[c] = IsNameCharacter(c, false);
  return table;
}();

}  // namespace

std::size_t XmlNameLength(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (at > 0 && byte < ContinuesName.size()) {
      if (!ContinuesName[byte]) break;
      ++at;
      continue;
    }
    const auto [character, length] = DecodeUtf8(text.substr(at));
    if (!IsNameCharacter(character, at == 0)) break;
    at += length;
  }
  return at;
}

}  // namespace fernwick
