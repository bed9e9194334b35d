#pragma once

#include <string>

#include "value/property_value.h"

namespace fernwick {

/// The value as an XML property list in UTF-8, ending in "</plist>": one element a line, indented
/// with tabs, the outermost not indented, dictionary keys in their order. A character that XML
/// cannot contain is written as U+FFFD. Without a line feed at the end.
std::string WriteXmlPropertyList(const PropertyValue& value);

}  // namespace fernwick
