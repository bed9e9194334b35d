#pragma once

#include <string_view>

#include "value/arena.h"
#include "value/property_value.h"
#include "value/result.h"
#include "value/value_locations.h"

namespace fernwick {

/// Reads a binary property list. Counts, offsets and sizes are checked before anything is allocated
/// for them. Objects may be shared, but what they contain is counted each time it is reached: at
/// most the size of the file plus 2^16 values, and the size of the file plus 2^26 bytes of keys,
/// strings and data. The value views `file` (ASCII strings and data) and `arena`. An error has the
/// offset of the first fault.
Result<PropertyValue> ParseBinaryPropertyList(std::string_view file, Arena& arena,
                                              LocationBuilder* locations = nullptr);

}  // namespace fernwick
