#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "value/parse_fault.h"
#include "value/xml/plain.h"

namespace fernwick {

/// A start tag whose attributes have been read and checked.
struct XmlStartTag {
  std::size_t offset = 0;       // of its "<"
  std::string_view name;        // views the document
  bool isEmptyElement = false;  // "<name/>"
};

/// Reads the markup of one XML document, one token after the other, and checks that it is
/// well-formed. It knows nothing of property lists and builds nothing. A function that skips or
/// reads returns false on a fault, which Fault() then returns; nothing may be read after that.
/// Offsets are in bytes.
class XmlCursor {
 public:
  /// Views the document. REQUIRES: UTF-8 of characters that XML can carry.
  explicit XmlCursor(std::string_view document) : document_(document) {}

  std::size_t Offset() const { return at_; }
  bool AtEnd() const { return at_ == document_.size(); }
  bool LookingAt(std::string_view literal) const { return Rest().starts_with(literal); }

  /// The XML declaration, the document type declaration and all that may be around them.
  bool SkipProlog();

  /// White space, comments and processing instructions.
  bool SkipMiscellany() {
    SkipWhiteSpace();
    return BeginsWithXmlTag(Rest()) || SkipAnyMiscellany();
  }

  /// REQUIRES: "<" comes next, and not "</".
  bool ReadStartTag(XmlStartTag& tag) { return ConsumePlainStartTag(tag) || ReadAnyStartTag(tag); }

  /// The end tag of the element `name`.
  bool ReadEndTag(std::string_view name) { return ConsumePlainEndTag(name) || ReadAnyEndTag(name); }

  /// The character data up to the next start or end tag, with references and CDATA sections
  /// resolved, line ends as line feeds, comments and processing instructions left out. The result
  /// views the document where it is there unchanged, and `decoded` otherwise.
  bool ReadCharacters(std::string_view& characters, std::string& decoded) {
    return ConsumePlainCharacters(characters) || ReadAnyCharacters(characters, decoded);
  }

  /// As ParseFault::Set.
  bool Fail(std::size_t offset, std::string message) {
    return fault_.Set(offset, std::move(message));
  }
  const ParseFault& Fault() const { return fault_; }

 private:
  std::string_view Rest() const { return document_.substr(at_); }

  // The fast path for plain markup: each of these consumes nothing and returns false when something
  // else comes next, which the functions with "Any" in their names then read.
  bool ConsumePlainStartTag(XmlStartTag& tag);
  bool ConsumePlainEndTag(std::string_view name);
  bool ConsumePlainCharacters(std::string_view& characters);
  bool SkipAnyMiscellany();
  bool ReadAnyStartTag(XmlStartTag& tag);
  bool ReadAnyEndTag(std::string_view name);
  bool ReadAnyCharacters(std::string_view& characters, std::string& decoded);

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
  bool AppendCharacters(std::size_t end, std::string& decoded);
  bool AppendCdataSection(std::string& decoded);

  std::string_view document_;
  std::size_t at_ = 0;
  ParseFault fault_;
};

inline bool XmlCursor::SkipWhiteSpace() {
  const std::size_t length = XmlWhiteSpaceLength(Rest());
  at_ += length;
  return length > 0;
}

inline bool XmlCursor::ConsumePlainStartTag(XmlStartTag& tag) {
  const auto name = PlainXmlStartTagName(Rest());
  if (name.empty()) return false;
  tag.offset = at_;  // by member: assigning a whole XmlStartTag is slower here
  tag.name = name;
  tag.isEmptyElement = false;
  at_ += name.size() + 2;  // with "<" and ">"
  return true;
}

inline bool XmlCursor::ConsumePlainEndTag(std::string_view name) {
  const std::size_t length = PlainXmlEndTagLength(Rest(), name);
  at_ += length;
  return length > 0;
}

// Character data that extends to a tag, without references or comments.
inline bool XmlCursor::ConsumePlainCharacters(std::string_view& characters) {
  characters = PlainXmlCharacters(Rest());
  if (!BeginsWithXmlTag(Rest().substr(characters.size()))) return false;
  at_ += characters.size();
  return true;
}

}  // namespace fernwick
