#pragma once

#include <cstddef>
#include <initializer_list>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "value/arena.h"
#include "value/calendar_date.h"
#include "value/property_value.h"
#include "value/record.h"
#include "value/xml/writer.h"

namespace fernwick {

/// How a failed comparison shows a value: in the one form that distinguishes every kind.
inline void PrintTo(const PropertyValue& value, std::ostream* out) {
  *out << WriteXmlPropertyList(value);
}
inline void PrintTo(const Dictionary& dictionary, std::ostream* out) {
  PrintTo(PropertyValue(dictionary), out);
}
inline void PrintTo(const Array& array, std::ostream* out) {
  PrintTo(PropertyValue(array), out);
}
inline void PrintTo(const Record& record, std::ostream* out) {
  PrintTo(PropertyValue(Dictionary(record)), out);
}

}  // namespace fernwick

namespace fernwick::testing {

/// The memory of values that tests write down. It lives as long as the process.
Arena& ValueArena();

/// A copy of the text in that memory, for a value that is to view it.
inline std::string_view Kept(std::string_view text) {
  return ValueArena().Copy(text);
}

/// Data with a copy of `bytes`.
inline Data Bytes(std::string_view bytes) {
  return {Kept(bytes)};
}

/// An array of these values.
inline Array List(std::span<const PropertyValue> elements) {
  return ValueArena().Copy(elements);
}
inline Array List(std::initializer_list<PropertyValue> elements) {
  return List(std::span(elements.begin(), elements.size()));
}

/// An array of the value, `count` times over.
inline Array Copies(std::size_t count, PropertyValue value) {
  return List(std::vector<PropertyValue>(count, value));
}

/// A dictionary of these entries. A key that occurs twice keeps its first location and its last
/// value.
inline Dictionary Dict(const Record& record) {
  return ValueArena().Copy(record.Entries());
}
inline Dictionary Dict(std::initializer_list<DictionaryEntry> entries) {
  return Dict(Record(entries));
}

/// The date that `text` spells as "YYYY-MM-DDThh:mm:ssZ". REQUIRES: it spells one.
inline PropertyValue DateOf(std::string_view text) {
  return *ParseDate(text);
}

/// `innermost` inside `depth` arrays of one element each.
inline PropertyValue NestedArrays(std::size_t depth, PropertyValue innermost) {
  for (std::size_t i = 0; i < depth; ++i) innermost = List({innermost});
  return innermost;
}

}  // namespace fernwick::testing
