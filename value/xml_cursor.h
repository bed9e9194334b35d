#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "value/parse_outcome.h"

namespace fernwick {

/// A start tag whose attributes have been read and checked.
struct XmlStartTag {
  std::size_t offset = 0;       // of its "<"
  std::string_view name;        // views the document
  bool isEmptyElement = false;  // "<name/>"
};

/// Walks through the markup of one XML document and holds it to being well-formed. It knows nothing
/// of property lists and builds nothing. Each operation that returns a boolean answers false when
/// it met a fault, which Fault() then names; nothing more is read after that.
class XmlCursor {
 public:
  /// Views the document. REQUIRES: UTF-8 of characters that XML can carry.
  explicit XmlCursor(std::string_view document) : document_(document) {}

  std::size_t Offset() const { return at_; }
  bool AtEnd() const { return at_ == document_.size(); }
  bool LookingAt(std::string_view literal) const { return Rest().starts_with(literal); }

  /// The XML declaration, the document type declaration and all that may stand around them.
  bool SkipProlog();

  /// White space, comments and processing instructions.
  bool SkipMiscellany();

  /// REQUIRES: the cursor stands at "<", and not at "</".
  bool ReadStartTag(XmlStartTag& tag);

  /// The end tag of the element `name`.
  bool ReadEndTag(std::string_view name);

  /// The character data up to the next start or end tag, with references and CDATA sections
  /// resolved, line ends as line feeds, comments and processing instructions left out. The result
  /// views the document where it stands there unchanged, and `decoded` otherwise.
  bool ReadCharacters(std::string_view& characters, std::string& decoded);

  bool Fail(std::size_t offset, std::string message) {
    return fault_.Set(offset, std::move(message));
  }
  const ParseFault& Fault() const { return fault_; }

 private:
  std::string_view Rest() const { return document_.substr(at_); }
  bool SkipWhiteSpace();
  bool SkipPast(std::string_view opening, std::string_view closing, const char* what);
  bool SkipComment();
  bool SkipProcessingInstruction();
  bool SkipDocumentType();
  bool SkipExternalIdentifier();
  bool SkipQuotedLiteral(const char* what);
  bool ReadName(std::string_view& name, const char* what);
  bool ReadAttributes(XmlStartTag& tag);
  bool ReadAttribute(std::string_view& name);
  bool CheckAttributeValue(std::size_t offset, std::string_view value);
  bool AppendReference(std::string_view text, std::size_t& at, std::string& decoded);
  bool AppendCharacterReference(std::string_view name, std::size_t offset, std::string& decoded);
  bool AppendPlainCharacters(std::size_t end, std::string& decoded);
  bool AppendCdataSection(std::string& decoded);

  std::string_view document_;
  std::size_t at_ = 0;
  ParseFault fault_;
};

}  // namespace fernwick
