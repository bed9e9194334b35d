#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fernwick::lab {

/// The directories of a payload that a board identifier may be meant for: at most three, those with
/// the smallest edit distance first, of at most 2 and letter case aside; otherwise in byte order.
/// Empty where the payload cannot be listed. O(n) comparisons of n directories.
std::vector<std::string> NearBoards(std::string_view boardIdString,
                                    const std::string& personalitiesDirectory);

}  // namespace fernwick::lab
