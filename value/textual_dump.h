#pragma once

#include <cstddef>
#include <string>

#include "value/property_value.h"
#include "value/text_sink.h"

namespace fernwick {

/// An absent value in every output.
inline constexpr char AbsentText[] = "(null)";

/// The readable rendering of a value, four blanks a level, no newline at the end: strings and keys
/// in double quotes, data as "<5a65642d 343200>", arrays in "( , )", dictionaries in "{ = ; }".
std::string DumpText(const PropertyValue& value);

/// How a rendering is indented.
struct DumpLayout {
  std::size_t indentation = 0;              // blanks before every line except the first
  std::size_t maxLevels = ~std::size_t{0};  // deeper values are indented like those of this level
};

/// The same in parts of whole lines, so that memory is that of the longest line.
void DumpText(const PropertyValue& value, const DumpLayout& layout, const TextSink& sink);

}  // namespace fernwick
