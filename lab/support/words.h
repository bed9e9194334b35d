#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "registry/key_schema.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// The names of the types in the set, in the order in which their checks build on each other.
std::vector<std::string_view> NamesOf(TypeSet types);

/// "personality 2", from 1 in the order of the file; "the personality" of LegacyUSBC, which has one
/// alone. `index` is from 0.
std::string PersonalityName(TypeSet type, std::size_t index);

/// A value on one line, with control characters escaped: numbers as they are, strings in quotes,
/// the elements of an array of up to eight; of a larger or deeper value only its kind.
std::string InlineText(const PropertyValue& value);

/// The same, integers from 10 also in hexadecimal: "65 (0x41)".
std::string InlineTextWithHex(const PropertyValue& value);

/// The kind of value that a key needs: "a number or an array of numbers".
std::string_view WordsFor(KeyKind kind);

/// The kind of the value: "a string", "an array".
std::string_view KindOf(const PropertyValue& value);

/// "1 match", "2 matches".
std::string Counted(std::size_t count, std::string_view singular, std::string_view plural);

}  // namespace fernwick::lab
