#pragma once

#include <string>
#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Documents, or pieces of one.
using Texts = std::vector<std::string>;

/// XML documents with syntax that the writer never produces.
Texts XmlOddities();

/// The same of the old text form.
Texts TextOddities();

/// As XML, but without anything around the value.
std::string WriteBareXml(const PropertyValue& value);

}  // namespace fernwick::fuzz
