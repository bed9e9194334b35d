#pragma once

#include <optional>
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

/// The candidates under a type: the elements of its array, of whatever kind, or the one dictionary
/// of "LegacyUSBC". Empty when the value has another shape. They are valid as long as `value` and
/// what it views.
std::optional<Array> PersonalitiesOf(std::string_view type, const PropertyValue& value);

}  // namespace fernwick
