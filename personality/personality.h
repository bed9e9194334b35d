#pragma once

#include <optional>
#include <string_view>

#include "registry/key_schema.h"
#include "value/property_value.h"

namespace fernwick {

/// One update target of a board's configuration: a firmware image, what a controller must be to
/// receive it, and the settings that go with it.
using Personality = Dictionary;

/// The candidates under a type: the elements of its array, of whatever kind, or the one dictionary
/// of "LegacyUSBC". Empty when the value has another shape. They are valid as long as `value` and
/// what it views.
std::optional<Array> PersonalitiesOf(std::string_view type, const PropertyValue& value);

}  // namespace fernwick
