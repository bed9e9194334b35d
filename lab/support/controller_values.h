#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "registry/key_schema.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// The greatest version that a controller stores: a port this whole number, of eight decimal
/// digits, and a Thunderbolt controller the same with this many hundredths.
inline constexpr std::uint64_t MaxStoredMajor = 99'999'999;
inline constexpr std::uint64_t MaxStoredHundredths = 63;

/// Whether the images of the type are for Thunderbolt controllers, not for ports.
bool IsOfThunderbolt(TypeSet type);

/// The number in packed BCD, the reverse of DecodeBcd. Where the number has more than eight digits,
/// the first counts more than nine. REQUIRES: DecodeBcd can return it.
std::uint32_t EncodeBcd(std::uint32_t number);

/// The board revisions that both bounds allow, 0 to 255, or none: then `lowest` > `highest`.
struct RevisionRange {
  int lowest = 0;
  int highest = 255;

  bool IsEmpty() const { return lowest > highest; }
  friend bool operator==(const RevisionRange&, const RevisionRange&) = default;
};

/// The revisions within the bounds. Each bound may be absent (null); one that is not a number
/// allows no revision.
RevisionRange RevisionsWithin(const PropertyValue* minimum, const PropertyValue* maximum);

/// Whose versions a personality is compared with: those of Thunderbolt controllers, hundredths from
/// .00 to .63 with 1e-9 added, or those of ports themselves, whole numbers from 0 on.
struct VersionScales {
  bool thunderbolt = true;
  bool port = true;

  friend bool operator==(const VersionScales&, const VersionScales&) = default;
  friend VersionScales operator&(VersionScales a, VersionScales b) {
    return {a.thunderbolt && b.thunderbolt, a.port && b.port};
  }
};

/// The scales for a personality of the type with that "Port Address" (null: absent). A port below a
/// Thunderbolt controller reports that controller's version and is listed only at the address 0, so
/// at any other address there are only whole numbers.
VersionScales VersionScalesOf(TypeSet type, const PropertyValue* portAddress);

/// The lowest versions that a controller can have installed and that the minimum, which may be
/// absent (null), does not exclude: one for each scale that has such a version.
std::vector<PropertyValue> LowestInstalledVersions(VersionScales scales,
                                                   const PropertyValue* minimum);

/// The limits that a personality sets to the installed version; null: none, as is a bound that is
/// NaN, which excludes nothing.
struct VersionWindow {
  const PropertyValue* offered = nullptr;  // the image's version, below which the installed one is
  const PropertyValue* minimum = nullptr;
  const PropertyValue* maximum = nullptr;

  bool Contains(const PropertyValue& installed) const;

  /// Whether a controller can report a version that the window contains.
  bool ContainsAny(VersionScales scales) const;
};

/// The versions that are in both windows.
VersionWindow Intersection(const VersionWindow& a, const VersionWindow& b);

/// The lowest version of the scales that is not below `version` or is above the maximum, which may
/// be absent (null): where a window ends. nullopt when there is none. REQUIRES: both are numbers
/// other than NaN, and one scale.
std::optional<PropertyValue> LowestVersionAfter(VersionScales scales, const PropertyValue& version,
                                                const PropertyValue* maximum);

/// Whether a controller that has `version` installed can report it: it is a version of one of the
/// scales that the controller can store, apart from the 1e-9 that is added to those of Thunderbolt
/// controllers.
bool IsReportable(const PropertyValue& version, VersionScales scales);

/// The version of a Thunderbolt controller that the maximum excludes by less than it can mean;
/// nullopt when there is none and when it is not a number.
std::optional<PropertyValue> VersionJustAbove(const PropertyValue& maximum);

/// Whether the number has no fraction.
bool IsWhole(const PropertyValue& number);

}  // namespace fernwick::lab
