#pragma once

#include <vector>

#include "value/property_value.h"

namespace fernwick::testing {

/// A small domain of values for exhaustive tests: every kind, numbers on both sides
/// of where a rounding, a sign or a width would show, and arrays with and without them.
std::vector<PropertyValue> ValueDomain();

}  // namespace fernwick::testing
