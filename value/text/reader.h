#pragma once

#include "value/arena.h"
#include "value/property_value.h"
#include "value/result.h"
#include "value/unicode/source_text.h"
#include "value/value_locations.h"

namespace fernwick {

/// Reads the old text form: strings, quoted or not, "<hex data>", "( , )" and "{ = ; }", or bare
/// "key = value;" pairs for a top-level dictionary. It knows no numbers, dates or booleans. A text
/// whose top level is one unquoted string is not a property list. The value views `source` and
/// `arena`. An error has the line and column of the first fault.
Result<PropertyValue> ParseTextPropertyList(const SourceText& source, Arena& arena,
                                            LocationBuilder* locations = nullptr);

}  // namespace fernwick
