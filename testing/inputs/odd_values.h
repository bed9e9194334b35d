#pragma once

#include <vector>

#include "testing/named_rows.h"
#include "value/property_value.h"

namespace fernwick::testing {

/// A value, and what the test of it is called.
using NamedValue = Named<PropertyValue>;

/// A value of every kind that is not a number, also values that look like one.
std::vector<NamedValue> NonNumbers();

}  // namespace fernwick::testing
