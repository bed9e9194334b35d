// A hand-written scanner: the plain forms, which nearly all markup has, are read by the inline
// functions of the header, everything else here. One pass, linear; n log n in the attributes of one
// tag, which are sorted to find a name that occurs twice.

#include "value/xml/cursor.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "value/unicode/ascii.h"
#include "value/unicode/text_position.h"
#include "value/unicode/utf8.h"
#include "value/xml/declaration.h"
#include "value/xml/names.h"

namespace fernwick {
namespace {

constexpr std::pair<std::string_view, char> PredefinedEntities[] = {
    {"amp", '&'}, {"apos", '\''}, {"gt", '>'}, {"lt", '<'}, {"quot", '"'},
};

constexpr std::string_view CdataOpening = "<![CDATA[";
constexpr std::string_view CdataClosing = "]]>";

// The character of "#10" or "#xA"; empty when XML cannot contain it.
std::optional<char32_t> ParseCharacterNumber(std::string_view name) {
  const bool hexadecimal = name.starts_with("#x");
  const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
  const char32_t base = hexadecimal ? 16 : 10;
  if (digits.empty()) return std::nullopt;
  char32_t character = 0;
  for (const char digit : digits) {
    const int value = HexDigitValue(digit);
    if (value < 0 || static_cast<char32_t>(value) >= base) return std::nullopt;
    character = character * base + static_cast<char32_t>(value);
    if (character > 0x10FFFF) return std::nullopt;
  }
  if (!IsTextCharacter(character)) return std::nullopt;
  return character;
}

// Appends text with both kinds of carriage return turned into line feeds.
void AppendWithLineFeeds(std::string_view text, std::string& out) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      out.push_back(text[i]);
    } else if (i + 1 == text.size() || text[i + 1] != '\n') {
      out.push_back('\n');
    }
  }
}

bool IsPublicIdentifierCharacter(char c) {
  const char lower = ToLowerAscii(c);
  if ((lower >= 'a' && lower <= 'z') || IsDecimalDigit(c)) return true;
  return std::string_view(" \r\n-'()+,./:=?;!*#@$_%").find(c) != std::string_view::npos;
}

}  // namespace

bool XmlCursor::SkipProlog() {
  XmlDeclaration declaration;
  if (!ReadXmlDeclaration(document_, declaration, fault_)) return false;
  at_ = declaration.length;
  if (!SkipMiscellany()) return false;
  if (!LookingAt("<!DOCTYPE")) return true;
  return SkipDocumentType() && SkipMiscellany();
}

bool XmlCursor::SkipAnyMiscellany() {
  for (;;) {
    if (LookingAt("<!--")) {
      if (!SkipComment()) return false;
    } else if (LookingAt("<?")) {
      if (!SkipProcessingInstruction()) return false;
    } else {
      return true;
    }
    SkipWhiteSpace();
  }
}

// Moves past `closing`. REQUIRES: `opening` comes next.
bool XmlCursor::SkipPast(std::string_view opening, std::string_view closing, const char* what) {
  const std::size_t end = document_.find(closing, at_ + opening.size());
  if (end == std::string_view::npos) return Fail(at_, std::string(what) + " does not end");
  at_ = end + closing.size();
  return true;
}

bool XmlCursor::SkipComment() {
  if (!SkipPast("<!--", "--", "a comment")) return false;
  if (!LookingAt(">")) return Fail(at_ - 2, "\"--\" is not allowed inside a comment");
  ++at_;
  return true;
}

bool XmlCursor::SkipProcessingInstruction() {
  const std::size_t start = at_;
  at_ += 2;
  std::string_view target;
  if (!ReadName(target, "the name of a processing instruction")) return false;
  if (EqualsIgnoringCase(target, "xml")) {
    return Fail(start, "an XML declaration is allowed only at the very start");
  }
  if (LookingAt("?>")) {
    at_ += 2;
    return true;
  }
  if (!SkipWhiteSpace()) return Fail(at_, "a processing instruction is malformed");
  return SkipPast("", "?>", "a processing instruction");
}

bool XmlCursor::SkipDocumentType() {
  const std::size_t start = at_;
  at_ += std::string_view("<!DOCTYPE").size();
  std::string_view name;
  if (!SkipWhiteSpace()) return Fail(start, "the document type declaration is malformed");
  if (!ReadName(name, "the name of the document type")) return false;
  const bool spaced = SkipWhiteSpace();
  if (spaced && (LookingAt("SYSTEM") || LookingAt("PUBLIC"))) {
    if (!SkipExternalIdentifier()) return false;
    SkipWhiteSpace();
  }
  if (LookingAt("[")) {
    return Fail(at_, "a document type declaration with an internal subset is not accepted");
  }
  if (!LookingAt(">")) return Fail(at_, "the document type declaration is malformed");
  ++at_;
  return true;
}

bool XmlCursor::SkipExternalIdentifier() {
  const bool isPublic = LookingAt("PUBLIC");
  at_ += 6;
  if (isPublic) {
    if (!SkipWhiteSpace()) return Fail(at_, "the document type declaration is malformed");
    const std::size_t start = at_;
    if (!SkipQuotedLiteral("the public identifier")) return false;
    const auto literal = document_.substr(start + 1, at_ - start - 2);
    if (!std::ranges::all_of(literal, IsPublicIdentifierCharacter)) {
      return Fail(start, "the public identifier contains a character that it must not");
    }
  }
  if (!SkipWhiteSpace()) return Fail(at_, "the document type declaration is malformed");
  return SkipQuotedLiteral("the system identifier");
}

bool XmlCursor::SkipQuotedLiteral(const char* what) {
  if (!LookingAt("\"") && !LookingAt("'")) {
    return Fail(at_, std::string(what) + " is not quoted");
  }
  const auto quote = document_.substr(at_, 1);
  return SkipPast(quote, quote, what);
}

bool XmlCursor::ReadName(std::string_view& name, const char* what) {
  name = Rest().substr(0, XmlNameLength(Rest()));
  if (name.empty()) return Fail(at_, std::string(what) + " is missing");
  at_ += name.size();
  return true;
}

bool XmlCursor::ReadAnyStartTag(XmlStartTag& tag) {
  tag = {.offset = at_, .name = {}, .isEmptyElement = false};
  ++at_;
  return ReadName(tag.name, "the name of an element") && ReadAttributes(tag);
}

bool XmlCursor::ReadAttributes(XmlStartTag& tag) {
  std::vector<std::string_view> names;
  for (;;) {
    const bool spaced = SkipWhiteSpace();
    if (LookingAt(">") || LookingAt("/>")) break;
    if (AtEnd()) return Fail(tag.offset, "a start tag does not end");
    if (!spaced) return Fail(at_, "a start tag is malformed");
    if (!ReadAttribute(names.emplace_back())) return false;
  }
  std::ranges::sort(names);
  const auto duplicate = std::ranges::adjacent_find(names);
  if (duplicate != names.end()) {
    return Fail(tag.offset, "the attribute " + Excerpt(*duplicate) + " occurs twice in one tag");
  }
  tag.isEmptyElement = LookingAt("/>");
  at_ += tag.isEmptyElement ? 2 : 1;
  return true;
}

bool XmlCursor::ReadAttribute(std::string_view& name) {
  if (!ReadName(name, "the name of an attribute")) return false;
  SkipWhiteSpace();
  if (!LookingAt("=")) return Fail(at_, "the attribute " + Excerpt(name) + " has no value");
  ++at_;
  SkipWhiteSpace();
  const std::size_t start = at_;
  if (!SkipQuotedLiteral("the value of an attribute")) return false;
  return CheckAttributeValue(start + 1, document_.substr(start + 1, at_ - start - 2));
}

bool XmlCursor::CheckAttributeValue(std::size_t offset, std::string_view value) {
  std::string ignored;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '<')
      return Fail(offset + i, "\"<\" is not allowed inside the value of an attribute");
    if (value[i] != '&') continue;
    std::size_t at = offset + i;
    if (!AppendReference(document_.substr(0, offset + value.size()), at, ignored)) return false;
    i = at - offset - 1;
  }
  return true;
}

bool XmlCursor::ReadAnyEndTag(std::string_view name) {
  if (!LookingAt("</")) return Fail(at_, "</" + std::string(name) + "> is missing");
  const std::size_t start = at_;
  at_ += 2;
  std::string_view found;
  if (!ReadName(found, "the name of an element")) return false;
  if (found != name) {
    return Fail(start,
                "</" + Excerpt(found) + "> found where </" + std::string(name) + "> was expected");
  }
  SkipWhiteSpace();
  if (!LookingAt(">")) return Fail(start, "an end tag is malformed");
  ++at_;
  return true;
}

// A view is possible while there is exactly one chunk of characters between tags, comments and the
// like, and it is plain. What comes second, or is not plain, has everything copied.
bool XmlCursor::ReadAnyCharacters(std::string_view& characters, std::string& decoded) {
  decoded.clear();
  bool viewsDocument = true;
  characters = {};
  const auto copyView = [&] {
    if (viewsDocument) decoded = characters;
    viewsDocument = false;
  };
  for (;;) {
    const std::size_t end = std::min(document_.find('<', at_), document_.size());
    const auto chunk = document_.substr(at_, end - at_);
    const bool isFirst = viewsDocument && characters.empty();
    if (isFirst && PlainXmlCharacters(chunk).size() == chunk.size()) {
      characters = chunk;
      at_ = end;
    } else if (!chunk.empty()) {
      copyView();
      if (!AppendCharacters(end, decoded)) return false;
    }
    if (LookingAt("<!--")) {
      if (!SkipComment()) return false;
    } else if (LookingAt("<?")) {
      if (!SkipProcessingInstruction()) return false;
    } else if (LookingAt(CdataOpening)) {
      copyView();
      if (!AppendCdataSection(decoded)) return false;
    } else {
      break;
    }
  }
  if (!viewsDocument) characters = decoded;
  return true;
}

// Appends the character data up to `end`, which no tag interrupts.
bool XmlCursor::AppendCharacters(std::size_t end, std::string& decoded) {
  const auto text = document_.substr(0, end);
  while (at_ < end) {
    const std::size_t special = std::min(text.find_first_of("&]", at_), end);
    AppendWithLineFeeds(text.substr(at_, special - at_), decoded);
    at_ = special;
    if (at_ == end) break;
    if (text[at_] == '&') {
      if (!AppendReference(text, at_, decoded)) return false;
      continue;
    }
    if (LookingAt(CdataClosing)) return Fail(at_, "\"]]>\" is not allowed in text");
    decoded.push_back(text[at_++]);
  }
  return true;
}

bool XmlCursor::AppendCdataSection(std::string& decoded) {
  const std::size_t start = at_ + CdataOpening.size();
  if (!SkipPast(CdataOpening, CdataClosing, "a CDATA section")) return false;
  AppendWithLineFeeds(document_.substr(start, at_ - CdataClosing.size() - start), decoded);
  return true;
}

// Resolves the reference at text[at] and moves `at` past it. REQUIRES: `text` is a prefix
// of the document, so that `at` counts in both.
bool XmlCursor::AppendReference(std::string_view text, std::size_t& at, std::string& decoded) {
  const std::size_t start = at;
  const std::size_t end = text.find_first_of("; \t\n\r<&", start + 1);
  if (end == std::string_view::npos || text[end] != ';') {
    return Fail(start, "\"&\" does not begin a reference");
  }
  const auto name = text.substr(start + 1, end - start - 1);
  at = end + 1;
  if (name.starts_with('#')) return AppendCharacterReference(name, start, decoded);
  const auto* entity =
      std::ranges::find(PredefinedEntities, name, &std::pair<std::string_view, char>::first);
  if (entity == std::end(PredefinedEntities)) {
    return Fail(start, "the entity &" + Excerpt(name) + "; is not defined");
  }
  decoded.push_back(entity->second);
  return true;
}

bool XmlCursor::AppendCharacterReference(std::string_view name, std::size_t offset,
                                         std::string& decoded) {
  const auto character = ParseCharacterNumber(name);
  if (!character) {
    return Fail(offset, "&" + Excerpt(name) + "; is no character that XML can carry");
  }
  AppendUtf8(decoded, *character);
  return true;
}

}  // namespace fernwick
