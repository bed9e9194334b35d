#pragma once

#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// A few values of every kind, with what is at the edge of each, and nested ones that hold them
/// all.
std::vector<PropertyValue> SampleValues();

/// A recorded computer with what the recorded examples do not have: classes that derive from each
/// other, children that share a name, and a root without a name that also stands in another plane.
PropertyValue SampleRecording();

}  // namespace fernwick::fuzz
