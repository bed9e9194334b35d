#pragma once

#include <cstddef>
#include <string_view>

#include "value/parse_fault.h"

namespace fernwick {

/// The declaration that may open an XML document.
struct XmlDeclaration {
  std::size_t length = 0;     // bytes, 0 when there is none
  std::string_view encoding;  // views the document; empty when it names none
};

/// Whether an XML declaration, well-formed or not, begins at the start of `document`.
bool HasXmlDeclaration(std::string_view document);

/// Reads the declaration at the start of `document`, if there is one. The bytes after it are
/// not read, so that this works before the encoding is known. Returns false with a fault when the
/// declaration is malformed.
bool ReadXmlDeclaration(std::string_view document, XmlDeclaration& declaration, ParseFault& fault);

}  // namespace fernwick
