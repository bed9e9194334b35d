#pragma once

#include <string>

#include "value/property_value.h"

namespace fernwick {

/// The value as an XML property list in UTF-8, ending in "</plist>": one element a line, indented
/// with tabs, the outermost not at all, dictionary keys in their order. A character that XML cannot
/// carry is written as U+FFFD. The newline after it is the caller's.
std::string WriteXmlPropertyList(const PropertyValue& value);

}  // namespace fernwick
