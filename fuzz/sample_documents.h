#pragma once

#include <string>
#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Documents, or pieces of one.
using Texts = std::vector<std::string>;

/// What an XML document may say and the writer never does.
Texts XmlOddities();

/// The same of the old text form.
Texts TextOddities();

/// As XML, but without anything around the value.
std::string WriteBareXml(const PropertyValue& value);

}  // namespace fernwick::fuzz
