#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "value/property_value.h"
#include "value/text_sink.h"

namespace fernwick::lab {

/// Keeps keys in the order in which they were added.
using Json = nlohmann::ordered_json;

/// A property-list value in JSON that keeps its kind: dictionaries, arrays, strings, booleans and
/// integers as they are, a real as a number with a fraction or an exponent; kinds that JSON lacks
/// as an object of one key: {"data": "5a65"} (hexadecimal), {"date": "2026-11-20T00:00:00Z"},
/// {"real": "nan"} (also "inf" and "-inf").
Json ToJson(const PropertyValue& value);

/// An absent value (null) is null.
Json ToJson(const PropertyValue* value);

/// The same of an optional value: null where there is none.
inline Json ValueOrNull(const std::optional<PropertyValue>& value) {
  return ToJson(value ? &*value : nullptr);
}

/// What JSON has itself, or null where there is none.
template <typename Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

/// An empty text is null.
inline Json TextOrNull(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

/// An array of what `convert` returns for each element.
template <typename Range, typename Convert>
Json ListOf(const Range& range, Convert convert) {
  auto list = Json::array();
  for (const auto& each : range) list.push_back(convert(each));
  return list;
}

/// The text of a JSON document, indented by two, with a newline at the end. Bytes that are not
/// UTF-8 (a path may contain any) become U+FFFD; control characters and those that change the
/// direction or the lines of a text are escaped.
std::string PrintJson(const Json& json);

/// The same for a value inside a document, on a line of that level: further lines are indented by
/// that much more, the first is not, and there is no newline at the end.
void PrintJsonAt(std::size_t level, const Json& json, const TextSink& sink);

/// The same of ToJson(value), which is not built.
void PrintJsonAt(std::size_t level, const PropertyValue& value, const TextSink& sink);

/// The blanks at the start of a line of that level, which are not more than those of level 32.
std::string JsonIndentation(std::size_t level);

/// As PrintJson, on one line: a row of ndjson.
std::string PrintJsonRow(const Json& json);

}  // namespace fernwick::lab
