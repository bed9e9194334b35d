#pragma once

#include "value/parse_outcome.h"
#include "value/unicode/source_text.h"
#include "value/value_places.h"

namespace fernwick {

/// Reads the old text form: strings, quoted or not, "<hex data>", "( , )" and "{ = ; }", or bare
/// "key = value;" pairs for a top-level dictionary. It knows no numbers, dates or booleans. A text
/// whose top level is one unquoted string is not a property list. Quoted strings without escapes
/// and unquoted ones view the source and share its buffer.
ParseOutcome ParseTextPropertyList(const SourceText& source, PlaceRecorder* places = nullptr);

}  // namespace fernwick
