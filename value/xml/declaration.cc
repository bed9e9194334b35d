#include "value/xml/declaration.h"

#include <algorithm>
#include <utility>

#include "value/unicode/ascii.h"

namespace fernwick {
namespace {

constexpr std::string_view Opening = "<?xml";

constexpr bool IsAsciiLetter(char c) {
  return ToLowerAscii(c) >= 'a' && ToLowerAscii(c) <= 'z';
}

bool IsVersion(std::string_view text) {
  return text.size() > 2 && text.starts_with("1.") &&
         std::ranges::all_of(text.substr(2), IsDecimalDigit);
}

bool IsEncodingName(std::string_view text) {
  return !text.empty() && IsAsciiLetter(text.front()) && std::ranges::all_of(text, [](char c) {
    return IsAsciiLetter(c) || IsDecimalDigit(c) || c == '.' || c == '_' || c == '-';
  });
}

bool IsStandaloneAnswer(std::string_view text) {
  return text == "yes" || text == "no";
}

// A cursor over the declaration's own text.
class DeclarationReader {
 public:
  explicit DeclarationReader(std::string_view text) : text_(text), at_(Opening.size()) {}

  std::size_t Offset() const { return at_; }
  bool FoundMalformedField() const { return foundMalformedField_; }

  bool SkipWhiteSpace() {
    const std::size_t start = at_;
    while (at_ < text_.size() && IsXmlWhiteSpace(text_[at_])) ++at_;
    return at_ > start;
  }

  bool Consume(std::string_view literal) {
    if (!text_.substr(at_).starts_with(literal)) return false;
    at_ += literal.size();
    return true;
  }

  // White space, `name`, "=" and a quoted value that `accepts`. When the name does not come next,
  // nothing is consumed; when it does and the rest is wrong, the reader stays at the fault.
  template <typename Accepts>
  bool ConsumeField(std::string_view name, Accepts accepts, std::string_view& value) {
    if (foundMalformedField_) return false;
    const std::size_t start = at_;
    if (!SkipWhiteSpace() || !Consume(name)) {
      at_ = start;
      return false;
    }
    foundMalformedField_ = !ConsumeValue(accepts, value);
    return !foundMalformedField_;
  }

 private:
  template <typename Accepts>
  bool ConsumeValue(Accepts accepts, std::string_view& value) {
    SkipWhiteSpace();
    if (!Consume("=")) return false;
    SkipWhiteSpace();
    const std::size_t start = at_;
    std::string_view quoted;
    if (!ConsumeQuoted(quoted) || !accepts(quoted)) {
      at_ = start;
      return false;
    }
    value = quoted;
    return true;
  }

  bool ConsumeQuoted(std::string_view& value) {
    if (at_ == text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) return false;
    const std::size_t end = text_.find(text_[at_], at_ + 1);
    if (end == std::string_view::npos) return false;
    value = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    return true;
  }

  std::string_view text_;
  std::size_t at_;
  bool foundMalformedField_ = false;
};

}  // namespace

bool HasXmlDeclaration(std::string_view document) {
  if (!document.starts_with(Opening)) return false;
  const auto rest = document.substr(Opening.size());
  // Anything else continues the name of a processing instruction, "xml-stylesheet" for one.
  return rest.empty() || IsXmlWhiteSpace(rest.front()) || rest.front() == '?';
}

bool ReadXmlDeclaration(std::string_view document, XmlDeclaration& declaration, ParseFault& fault) {
  declaration = {};
  if (!HasXmlDeclaration(document)) return true;
  DeclarationReader reader(document);
  std::string_view ignored;
  const bool hasVersion = reader.ConsumeField("version", IsVersion, ignored);
  if (hasVersion) {
    reader.ConsumeField("encoding", IsEncodingName, declaration.encoding);
    reader.ConsumeField("standalone", IsStandaloneAnswer, ignored);
  }
  if (!reader.FoundMalformedField()) reader.SkipWhiteSpace();
  if (!hasVersion || reader.FoundMalformedField() || !reader.Consume("?>")) {
    return fault.Set(reader.Offset(), "the XML declaration is malformed");
  }
  declaration.length = reader.Offset();
  return true;
}

}  // namespace fernwick
