#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace fernwick::lab {

/// The text with the letters of ASCII in lower case.
std::string LowerCase(std::string_view text);

/// The optimal string alignment distance: how many characters must be inserted, deleted, replaced
/// or exchanged with their neighbour to turn one text into the other, where no part is edited
/// twice. Counted in bytes; `limit` + 1 when it is more than `limit`.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit);

/// The known word that `word` is probably a misspelling of. Letter case, blanks, hyphens and
/// underscores aside, it may differ by a distance of 2, but by less than a quarter of its length; a
/// known word of less than five characters only by one character too many or two exchanged. Returns
/// the nearest, the first of equals; empty when there is none.
std::string_view NearestSpelling(std::string_view word, std::span<const std::string_view> known);

/// The question for a message about an unknown word: " (did you mean "replay"?)", or empty when no
/// known word is near.
std::string SuggestionFor(std::string_view word, std::span<const std::string_view> known);

}  // namespace fernwick::lab
