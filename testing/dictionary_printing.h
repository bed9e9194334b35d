#pragma once

#include <ostream>

#include "testing/property_values.h"

namespace fernwick {

/// How a failed comparison shows a record: as the value that it is.
inline void PrintTo(const Dictionary& dictionary, std::ostream* out) {
  PrintTo(PropertyValue(dictionary), out);
}

}  // namespace fernwick
