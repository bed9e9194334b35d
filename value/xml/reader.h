#pragma once

#include "value/arena.h"
#include "value/property_value.h"
#include "value/result.h"
#include "value/unicode/source_text.h"
#include "value/value_locations.h"

namespace fernwick {

/// Reads an XML property list: one value, with or without <plist> around it. The document must be
/// well-formed; attributes and processing instructions are read and ignored, nothing is fetched.
/// Without a byte-order mark it is UTF-8, or what its declaration names of UTF-8, ISO-8859-1 and
/// US-ASCII. The value views `source` and `arena`. An error has the line and column of the first
/// fault.
Result<PropertyValue> ParseXmlPropertyList(const SourceText& source, Arena& arena,
                                           LocationBuilder* locations = nullptr);

}  // namespace fernwick
