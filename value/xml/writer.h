#pragma once

#include <cstddef>
#include <string>

#include "value/property_value.h"
#include "value/text_sink.h"

namespace fernwick {

/// The value as an XML property list in UTF-8, ending in "</plist>": one element a line, indented
/// with tabs, the outermost not indented, dictionary keys in their order. A character that XML
/// cannot contain is written as U+FFFD. Without a line feed at the end.
std::string WriteXmlPropertyList(const PropertyValue& value);

/// The same in parts. Elements deeper than `maxIndentation` are indented with that many tabs.
void WriteXmlPropertyList(const PropertyValue& value, std::size_t maxIndentation,
                          const TextSink& sink);

}  // namespace fernwick
