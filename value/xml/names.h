#pragma once

#include <cstddef>
#include <string_view>

namespace fernwick {

/// The length in bytes of the XML name at the start of `text`; 0 when none begins there. REQUIRES:
/// well-formed UTF-8.
std::size_t XmlNameLength(std::string_view text);

}  // namespace fernwick
