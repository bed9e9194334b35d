#include "value/xml/encoding.h"

#include <algorithm>

#include "value/unicode/ascii.h"
#include "value/unicode/text_position.h"
#include "value/unicode/utf8.h"
#include "value/xml/declaration.h"

namespace fernwick {
namespace {

std::string TranscodeLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) AppendUtf8(text, static_cast<unsigned char>(byte));
  return text;
}

std::string DescribeInvalid(std::string_view text, std::size_t at) {
  const bool wellFormed = DecodeUtf8(text.substr(at)).length != 0;
  return DescribeAt(text, at,
                    wellFormed ? "a character that XML cannot carry" : "the text is not UTF-8");
}

std::string CheckAscii(std::string_view text) {
  const auto* high = std::ranges::find_if(text, [](char c) { return (c & 0x80) != 0; });
  if (high == text.end()) return {};
  return DescribeAt(text, static_cast<std::size_t>(high - text.begin()),
                    "the text is not US-ASCII, which it declares");
}

// Follows the encoding that the document declares for itself.
std::string FollowDeclaration(const SourceText& source, SourceText& decoded) {
  XmlDeclaration declaration;
  ParseFault fault;
  if (!ReadXmlDeclaration(source.text, declaration, fault)) {
    return DescribeAt(source.text, fault.Offset(), fault.Message());
  }
  const auto declares = [&](std::string_view name) {
    return EqualsIgnoringCase(declaration.encoding, name);
  };
  if (declaration.encoding.empty() || declares("UTF-8")) return {};
  if (declares("US-ASCII")) return CheckAscii(source.text);
  if (declares("ISO-8859-1")) {
    decoded = OwnedSource(TranscodeLatin1(source.text));
    return {};
  }
  const auto at = static_cast<std::size_t>(declaration.encoding.data() - source.text.data());
  return DescribeAt(source.text, at,
                    "the encoding " + Excerpt(declaration.encoding) +
                        (declares("UTF-16") ? " needs a byte-order mark" : " is not supported"));
}

}  // namespace

std::string DecodeXmlDocument(const SourceText& source, SourceText& decoded) {
  decoded = source;
  if (!source.hasByteOrderMark) {
    auto error = FollowDeclaration(source, decoded);
    if (!error.empty()) return error;
  }
  const std::size_t invalid = FindInvalidText(decoded.text);
  if (invalid != NoPlace) return DescribeInvalid(decoded.text, invalid);
  if (decoded.endsInInvalidUtf16) {
    return DescribeAt(decoded.text, decoded.text.size(), "the text is not UTF-16");
  }
  return {};
}

}  // namespace fernwick
