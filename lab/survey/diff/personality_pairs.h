#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "personality/personality.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

/// For each personality of the old array the index of the one of the new array that has the same
/// purpose: it selects the same controllers of the type, though image, version and version bounds
/// may have changed. Empty where the new array has none. No two have the same counterpart. Elements
/// that are not dictionaries have no counterpart.
using PersonalityPairs = std::vector<std::optional<std::size_t>>;
PersonalityPairs PairPersonalities(TypeSet type, Array before, Array after);

/// The personality as people find it in the file: "personality 2 (left-210.bin)", from 1.
std::string PersonalityWithImage(Array personalities, std::size_t index);

}  // namespace fernwick::lab
