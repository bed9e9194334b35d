#pragma once

#include <string>

#include "value/unicode/source_text.h"

namespace fernwick {

/// Brings an XML document into UTF-8, by its byte-order mark or else by the encoding that it
/// declares, and checks that it holds nothing but characters that XML can carry. Returns what is
/// wrong and where, or an empty text and the document in `decoded`.
std::string DecodeXmlDocument(const SourceText& source, SourceText& decoded);

}  // namespace fernwick
