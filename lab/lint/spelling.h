#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace fernwick::lab {

/// How many characters must be added, left out, replaced or exchanged with their neighbour to turn
/// one text into the other, counted in bytes; `limit` + 1 when it is more than `limit`.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit);

/// The known word of which `word` is a misspelling: apart from letter case, blanks, hyphens and
/// underscores it differs in at most two characters, and in fewer than one in four; a word of less
/// than five in one too many or in two exchanged. The nearest, of those equally near the first.
/// Empty when there is none.
std::string_view NearestSpelling(std::string_view word, std::span<const std::string_view> known);

}  // namespace fernwick::lab
