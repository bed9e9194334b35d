#pragma once

#include <string>
#include <string_view>

namespace fernwick::lab {

/// A text that is safe to show, as the text of an XML element or, in double quotes, of an
/// attribute.
std::string XmlText(std::string_view text);

}  // namespace fernwick::lab
