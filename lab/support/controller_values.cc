// Binary search. All versions that a kind of controller can report form a scale in rising order, of
// which any can be computed by its index; the first version on one side of a limit is found in a
// logarithmic number of steps, though a scale has billions of versions.

#include "lab/support/controller_values.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "personality/requirements.h"
#include "registry/thunderbolt_inventory.h"
#include "registry/typed_readers.h"

namespace fernwick::lab {
namespace {

constexpr std::uint32_t AllDigits = 0xFFFFFFFF;

// Versions are a hundredth apart: what is nearer to one than this means that one.
constexpr double Tolerance = 0.00001;

// All versions of one kind, in rising order.
struct VersionScale {
  std::uint64_t count;
  PropertyValue (*at)(std::uint64_t index);
};

const VersionScale ThunderboltVersions = {
    (std::uint64_t{DecodeBcd(AllDigits)} + 1) * 64, [](std::uint64_t index) {
      return PropertyValue(
          ThunderboltFirmwareVersion(EncodeBcd(static_cast<std::uint32_t>(index / 64)),
                                     static_cast<std::uint32_t>(index % 64)));
    }};

const VersionScale PortVersions = {std::uint64_t{DecodeBcd(AllDigits)} + 1,
                                   [](std::uint64_t index) { return PropertyValue(index); }};

// The first version of the scale for which `isBelow` is false. REQUIRES: it is false for all that
// follow it. Binary search: the scale has billions of versions.
template <typename Predicate>
std::optional<PropertyValue> PartitionPoint(const VersionScale& scale, Predicate isBelow) {
  std::uint64_t first = 0;
  for (std::uint64_t count = scale.count; count > 0;) {
    const std::uint64_t half = count / 2;
    if (isBelow(scale.at(first + half))) {
      first += half + 1;
      count -= half + 1;
    } else {
      count = half;
    }
  }
  if (first == scale.count) return std::nullopt;
  return scale.at(first);
}

}  // namespace

bool IsOfThunderbolt(TypeSet type) {
  return type == Types::LegacyThunderbolt || type == Types::Thunderbolt;
}

std::uint32_t EncodeBcd(std::uint32_t number) {
  std::uint32_t packed = 0;
  std::uint32_t weight = 10'000'000;
  for (int digit = 0; digit < 8; ++digit, weight /= 10) {
    const std::uint32_t value = std::min<std::uint32_t>(number / weight, 15);
    packed = packed << 4 | value;
    number -= value * weight;
  }
  return packed;
}

RevisionRange RevisionsWithin(const PropertyValue* minimum, const PropertyValue* maximum) {
  const bool areNumbers =
      (minimum == nullptr || minimum->IsNumber()) && (maximum == nullptr || maximum->IsNumber());
  RevisionRange range;
  if (!areNumbers) return {1, 0};
  if (minimum != nullptr) {
    while (!range.IsEmpty() && NumberGreater(*minimum, range.lowest)) ++range.lowest;
  }
  if (maximum != nullptr) {
    while (!range.IsEmpty() && NumberLess(*maximum, range.highest)) --range.highest;
  }
  return range;
}

VersionScales VersionScalesOf(TypeSet type, const PropertyValue* portAddress) {
  if (type == Types::LegacyThunderbolt) return {.thunderbolt = true, .port = false};
  // A port below a Thunderbolt controller whose version does not read has a version of its own.
  if (type == Types::Thunderbolt || portAddress == nullptr) return {};
  const auto list = portAddress->AsArray();
  const auto isZero = [](const PropertyValue& address) { return NumbersEqual(address, 0); };
  const bool allowsZero = list ? std::ranges::any_of(*list, isZero) : isZero(*portAddress);
  return {.thunderbolt = allowsZero, .port = true};
}

std::vector<PropertyValue> LowestInstalledVersions(VersionScales scales,
                                                   const PropertyValue* minimum) {
  const auto isExcluded = [&](const PropertyValue& version) {
    return minimum != nullptr && NumberGreater(*minimum, version);
  };
  std::vector<PropertyValue> versions;
  const auto add = [&](const VersionScale& scale) {
    if (auto lowest = PartitionPoint(scale, isExcluded)) versions.push_back(*lowest);
  };
  if (scales.thunderbolt) add(ThunderboltVersions);
  if (scales.port) add(PortVersions);
  return versions;
}

bool VersionWindow::Contains(const PropertyValue& installed) const {
  return (offered == nullptr || NumberGreater(*offered, installed)) &&
         (minimum == nullptr || !NumberGreater(*minimum, installed)) &&
         (maximum == nullptr || !NumberLess(*maximum, installed));
}

// The lowest version from the minimum on decides, for each scale.
bool VersionWindow::ContainsAny(VersionScales scales) const {
  if (minimum != nullptr && !Contains(*minimum)) return false;
  const auto lowest = LowestInstalledVersions(scales, minimum);
  return std::ranges::any_of(lowest, [&](const auto& version) { return Contains(version); });
}

VersionWindow Intersection(const VersionWindow& a, const VersionWindow& b) {
  const auto either = [](const PropertyValue* first, const PropertyValue* second, auto isBetter) {
    if (first == nullptr || second == nullptr) return first == nullptr ? second : first;
    return isBetter(*first, *second) ? first : second;
  };
  return {either(a.offered, b.offered, NumberLess), either(a.minimum, b.minimum, NumberGreater),
          either(a.maximum, b.maximum, NumberLess)};
}

std::optional<PropertyValue> LowestVersionAfter(VersionScales scales, const PropertyValue& version,
                                                const PropertyValue* maximum) {
  return PartitionPoint(
      scales.thunderbolt ? ThunderboltVersions : PortVersions, [&](const PropertyValue& v) {
        return NumberGreater(version, v) && (maximum == nullptr || !NumberLess(*maximum, v));
      });
}

bool IsReportable(const PropertyValue& version, VersionScales scales) {
  return std::ranges::any_of(LowestInstalledVersions(scales, &version), [&](const auto& next) {
    if (!NumberLess(next, MaxStoredMajor + 1)) return false;
    if (const auto real = next.AsReal()) return !NumberGreater(*real - Tolerance, version);
    return NumbersEqual(next, version);
  });
}

std::optional<PropertyValue> VersionJustAbove(const PropertyValue& maximum) {
  if (!NumbersEqual(maximum, maximum)) return std::nullopt;
  auto next = PartitionPoint(ThunderboltVersions, [&](const PropertyValue& version) {
    return !NumberGreater(version, maximum);
  });
  if (next && NumberGreater(*next->AsReal() - Tolerance, maximum)) return std::nullopt;
  return next;
}

bool IsWhole(const PropertyValue& number) {
  const auto real = number.AsReal();
  return !real || std::trunc(*real) == *real;
}

}  // namespace fernwick::lab
