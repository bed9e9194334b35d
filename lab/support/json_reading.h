#pragma once

#include <optional>
#include <string_view>

#include "lab/support/json_values.h"

namespace fernwick::lab {

/// Parses a JSON document. Returns nullopt when it is malformed or arrays and objects are nested
/// more than 1024 deep. A key that occurs twice keeps its first position and its last value. Costs
/// n log n, however many keys an object has.
std::optional<Json> ParseOrderedJson(std::string_view text);

}  // namespace fernwick::lab
