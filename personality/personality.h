#pragma once

#include <optional>
#include <string_view>

#include "registry/key_schema.h"
#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick {

/// An entry of a board's configuration: a firmware image, what a controller must be to receive it,
/// and the settings that go with it.
using Personality = Dictionary;

/// The candidates under a type: the elements of its array, of whatever kind, or the one dictionary
/// of "LegacyUSBC". Empty when the value has another shape. They are valid as long as `value` and
/// what it views.
std::optional<Array> PersonalitiesOf(std::string_view type, const PropertyValue& value);

/// The candidates, of which those with very many keys are copied into `arena` without the unread
/// ones: a lookup is linear in the keys, and each pair needs a dozen lookups. `candidates` itself
/// where none is copied.
Array WithoutUnreadKeys(Array candidates, Arena& arena);

}  // namespace fernwick
