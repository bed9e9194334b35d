#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "value/ascii.h"
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
  bool SkipMiscellany() {
    SkipWhiteSpace();
    return LookingAtTag() || SkipAnyMiscellany();
  }

  /// REQUIRES: the cursor stands at "<", and not at "</".
  bool ReadStartTag(XmlStartTag& tag) { return TakePlainStartTag(tag) || ReadAnyStartTag(tag); }

  /// The end tag of the element `name`.
  bool ReadEndTag(std::string_view name) { return TakePlainEndTag(name) || ReadAnyEndTag(name); }

  /// The character data up to the next start or end tag, with references and CDATA sections
  /// resolved, line ends as line feeds, comments and processing instructions left out. The result
  /// views the document where it stands there unchanged, and `decoded` otherwise.
  bool ReadCharacters(std::string_view& characters, std::string& decoded) {
    return TakePlainCharacters(characters) || ReadAnyCharacters(characters, decoded);
  }

  bool Fail(std::size_t offset, std::string message) {
    return fault_.Set(offset, std::move(message));
  }
  const ParseFault& Fault() const { return fault_; }

 private:
  std::string_view Rest() const { return document_.substr(at_); }

  // Nearly all markup is plain: a tag has nothing but its name in it, text nothing that stands for
  // something else. What takes it is short enough to be part of its caller, takes nothing when it
  // is not plain, and leaves all else, faults included, to the operations named "Any".
  bool LookingAtTag() const;
  bool TakePlainStartTag(XmlStartTag& tag);
  bool TakePlainEndTag(std::string_view name);
  bool TakePlainCharacters(std::string_view& characters);
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
  bool AppendPlainCharacters(std::size_t end, std::string& decoded);
  bool AppendCdataSection(std::string& decoded);

  std::string_view document_;
  std::size_t at_ = 0;
  ParseFault fault_;
};

// The characters at the start of `text` that mean what they are, up to "<" or the end.
inline std::string_view PlainXmlCharacters(std::string_view text) {
  static constexpr auto EndsThem = [] {
    std::array<bool, 256> table{};
    for (const char c : {'<', '&', '\r', ']'}) table[static_cast<unsigned char>(c)] = true;
    return table;
  }();
  std::size_t length = 0;
  while (length < text.size() && !EndsThem[static_cast<unsigned char>(text[length])]) ++length;
  return text.substr(0, length);
}

inline bool XmlCursor::SkipWhiteSpace() {
  constexpr std::string_view Indentation = "\t\t\t\t\t\t\t\t";  // deep down there is much of it
  std::size_t at = at_;
  while (at < document_.size() && IsXmlWhiteSpace(document_[at])) {
    if (document_[at++] != '\n') continue;
    while (document_.substr(at).starts_with(Indentation)) at += Indentation.size();
  }
  return std::exchange(at_, at) < at;
}

// At "<" of a start or end tag, and not of a comment or the like.
inline bool XmlCursor::LookingAtTag() const {
  const auto rest = Rest();
  return rest.size() > 1 && rest[0] == '<' && rest[1] != '!' && rest[1] != '?';
}

// "<name>" of lower-case ASCII letters.
inline bool XmlCursor::TakePlainStartTag(XmlStartTag& tag) {
  const std::size_t start = at_ + 1;
  std::size_t at = start;
  while (at < document_.size() && document_[at] >= 'a' && document_[at] <= 'z') ++at;
  if (at == start || at == document_.size() || document_[at] != '>') return false;
  tag = {.offset = at_, .name = document_.substr(start, at - start), .isEmptyElement = false};
  at_ = at + 1;
  return true;
}

// "</name>" without white space.
inline bool XmlCursor::TakePlainEndTag(std::string_view name) {
  const auto rest = Rest();
  if (rest.size() < name.size() + 3 || rest[0] != '<' || rest[1] != '/') return false;
  if (rest[name.size() + 2] != '>' || rest.substr(2, name.size()) != name) return false;
  at_ += name.size() + 3;
  return true;
}

// Character data from one tag to the next without anything else between them.
inline bool XmlCursor::TakePlainCharacters(std::string_view& characters) {
  characters = PlainXmlCharacters(Rest());
  at_ += characters.size();
  if (LookingAtTag()) return true;
  at_ -= characters.size();
  return false;
}

}  // namespace fernwick
