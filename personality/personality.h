#pragma once

#include <optional>
#include <string_view>

#include "registry/key_schema.h"
#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick {

/// One update target of a board's configuration: a firmware image, what a controller must be to
/// receive it, and the settings that go with it.
using Personality = Dictionary;

/// The candidates under a type: the elements of its array, of whatever kind, or the one dictionary
/// of "LegacyUSBC". Empty when the value has another shape. They are valid as long as `value` and
/// what it views.
std::optional<Array> PersonalitiesOf(std::string_view type, const PropertyValue& value);

/// The candidates without the keys that nothing reads of those personalities that have very many
/// keys: each pair looks up a dozen, which would cost as many comparisons as there are unread ones.
/// The copies are in `arena`; where there are none this is `candidates` itself.
Array WithoutUnreadKeys(Array candidates, Arena& arena);

}  // namespace fernwick
