#pragma once

#include <string_view>

#include "value/arena.h"
#include "value/result.h"
#include "value/unicode/source_text.h"

namespace fernwick {

/// The XML document in UTF-8, by its byte-order mark or else by the encoding that it declares: the
/// source's own text, or a transcoded one in `arena`. An error when it is not in that encoding,
/// declares another one than those supported, or contains a character that XML cannot carry.
Result<std::string_view> DecodeXmlDocument(const SourceText& source, Arena& arena);

}  // namespace fernwick
