#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "value/property_value.h"

namespace fernwick {

/// One update target of a board's configuration: a firmware image, what a controller must be to
/// receive it, and the settings that go with it.
using Personality = Dictionary;

/// The top-level keys of a configuration that name a kind of personality, exact and case-sensitive.
namespace PersonalityType {
inline constexpr std::string_view LegacyThunderbolt = "LegacyThunderbolt";
inline constexpr std::string_view Thunderbolt = "Thunderbolt";
inline constexpr std::string_view LegacyUsbc = "LegacyUSBC";
inline constexpr std::string_view Usbc = "USBC";
}  // namespace PersonalityType

/// The candidates that stand under a type: the elements of its array, of whatever kind, or the one
/// dictionary of "LegacyUSBC". Nothing when the value has another shape. They live as long as
/// `value`.
std::optional<std::span<const PropertyValue>> PersonalitiesOf(std::string_view type,
                                                              const PropertyValue& value);

}  // namespace fernwick
