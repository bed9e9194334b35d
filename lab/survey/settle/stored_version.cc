#include "lab/survey/settle/stored_version.h"

#include <algorithm>

#include "lab/support/controller_values.h"

namespace fernwick::lab {
namespace {

// Rounded where a double does not have the integer, which is then far above every version.
double RealOf(const PropertyValue& value) {
  const auto number = *value.AsNumber();
  if (const auto* real = std::get_if<double>(&number)) return *real;
  const auto& integer = std::get<Integer>(number);
  return integer.IsNegative() ? -1.0 : static_cast<double>(integer.Bits());
}

// The greatest number of hundredths that is at most the version, as the tool computes versions. The
// product may be rounded up or down across it.
std::uint64_t HundredthsIn(double version) {
  auto hundredths = static_cast<std::uint64_t>(version * 100);
  while (static_cast<double>(hundredths) / 100 > version) --hundredths;
  while (static_cast<double>(hundredths + 1) / 100 <= version) ++hundredths;
  return hundredths;
}

}  // namespace

std::optional<std::uint32_t> StoredPortVersion(const PropertyValue& offered) {
  const double version = RealOf(offered);
  if (!(version >= 0)) return std::nullopt;
  return EncodeBcd(
      static_cast<std::uint32_t>(std::min(version, static_cast<double>(MaxStoredMajor))));
}

std::optional<ThunderboltVersionWords> StoredThunderboltVersion(const PropertyValue& offered) {
  const double version = RealOf(offered);
  if (!(version >= 0)) return std::nullopt;
  const auto hundredths = HundredthsIn(std::min(version, static_cast<double>(MaxStoredMajor + 1)));
  const auto major = std::min(hundredths / 100, MaxStoredMajor);
  const auto minor =
      major * 100 + MaxStoredHundredths < hundredths ? MaxStoredHundredths : hundredths % 100;
  return ThunderboltVersionWords{EncodeBcd(static_cast<std::uint32_t>(major)),
                                 static_cast<std::uint32_t>(minor)};
}

}  // namespace fernwick::lab
