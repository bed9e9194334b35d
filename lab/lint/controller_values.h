#pragma once

#include <optional>
#include <vector>

#include "registry/key_schema.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// The board revisions that both bounds allow, 0 to 255, or none: then `lowest` > `highest`.
struct RevisionRange {
  int lowest = 0;
  int highest = 255;

  bool IsEmpty() const { return lowest > highest; }
  friend bool operator==(const RevisionRange&, const RevisionRange&) = default;
};

/// Of the bounds each may be absent (null). One that is not a number allows no revision.
RevisionRange RevisionsWithin(const PropertyValue* minimum, const PropertyValue* maximum);

/// The lowest versions that a controller can have installed and that the minimum, which may be
/// absent (null), does not exclude: of each way in which versions are held one, where there is one.
std::vector<PropertyValue> LowestInstalledVersions(TypeSet type, const PropertyValue* minimum);

/// The lowest version of a Thunderbolt controller that is above the number. None when there is none
/// and when it is not a number.
std::optional<PropertyValue> NextThunderboltVersion(const PropertyValue& number);

}  // namespace fernwick::lab
