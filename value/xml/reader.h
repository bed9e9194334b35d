#pragma once

#include "value/parse_outcome.h"
#include "value/unicode/source_text.h"
#include "value/value_places.h"

namespace fernwick {

/// Reads an XML property list: one value, with or without <plist> around it. The document must be
/// well-formed; attributes and processing instructions are read and ignored, nothing is fetched.
/// Without a byte-order mark it is UTF-8, or what its declaration names of UTF-8, ISO-8859-1 and
/// US-ASCII. Strings that need no decoding view the source and share its buffer.
ParseOutcome ParseXmlPropertyList(const SourceText& source, PlaceRecorder* places = nullptr);

}  // namespace fernwick
