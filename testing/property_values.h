#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "value/calendar_date.h"
#include "value/property_value.h"
#include "value/xml/writer.h"

namespace fernwick {

/// How a failed comparison shows a value: in the one form that tells every kind from every other.
inline void PrintTo(const PropertyValue& value, std::ostream* out) {
  *out << WriteXmlPropertyList(value);
}

/// The same of a dictionary.
inline void PrintTo(const Dictionary& dictionary, std::ostream* out) {
  PrintTo(PropertyValue(dictionary), out);
}

}  // namespace fernwick

namespace fernwick::testing {

/// Data that holds a copy of `bytes`.
inline Data Bytes(std::string_view bytes) {
  return {SharedBytes(std::string(bytes))};
}

/// The date that `text` spells as "YYYY-MM-DDThh:mm:ssZ". REQUIRES: it spells one.
inline PropertyValue DateOf(std::string_view text) {
  return *ParseDate(text);
}

/// `innermost` inside `depth` arrays of one element each.
inline PropertyValue NestedArrays(std::size_t depth, PropertyValue innermost) {
  for (std::size_t i = 0; i < depth; ++i) {
    Array array;
    array.push_back(std::move(innermost));
    innermost = std::move(array);
  }
  return innermost;
}

}  // namespace fernwick::testing
