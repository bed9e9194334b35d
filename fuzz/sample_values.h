#pragma once

#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// A few values of every kind, with what is at the edge of each, and nested ones of all of them.
/// They live as long as the process.
const std::vector<PropertyValue>& SampleValues();

/// A recorded computer with what the recorded examples do not have: classes that derive from each
/// other, children that share a name, and a root without a name that is in another plane too.
PropertyValue SampleRecording();

}  // namespace fernwick::fuzz
