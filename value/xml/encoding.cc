#include "value/xml/encoding.h"

#include <algorithm>
#include <string>

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

Error InvalidText(std::string_view text, std::size_t at) {
  const bool wellFormed = DecodeUtf8(text.substr(at)).length != 0;
  return ErrorAt(text, at,
                 wellFormed ? "a character that XML cannot carry" : "the text is not UTF-8");
}

Result<std::string_view> CheckedAscii(std::string_view text) {
  const auto* high = std::ranges::find_if(text, [](char c) { return (c & 0x80) != 0; });
  if (high == text.end()) return text;
  return ErrorAt(text, static_cast<std::size_t>(high - text.begin()),
                 "the text is not US-ASCII, which it declares");
}

// Follows the encoding that the document declares for itself.
Result<std::string_view> FollowDeclaration(std::string_view text, Arena& arena) {
  XmlDeclaration declaration;
  ParseFault fault;
  if (!ReadXmlDeclaration(text, declaration, fault)) {
    return ErrorAt(text, fault.Offset(), fault.Message());
  }
  const auto declares = [&](std::string_view name) {
    return EqualsIgnoringCase(declaration.encoding, name);
  };
  if (declaration.encoding.empty() || declares("UTF-8")) return text;
  if (declares("US-ASCII")) return CheckedAscii(text);
  if (declares("ISO-8859-1")) return arena.Adopt(TranscodeLatin1(text));
  const auto at = static_cast<std::size_t>(declaration.encoding.data() - text.data());
  return ErrorAt(text, at,
                 "the encoding " + Excerpt(declaration.encoding) +
                     (declares("UTF-16") ? " needs a byte-order mark" : " is not supported"));
}

}  // namespace

Result<std::string_view> DecodeXmlDocument(const SourceText& source, Arena& arena) {
  Result<std::string_view> decoded = source.text;
  if (!source.hasByteOrderMark) decoded = FollowDeclaration(source.text, arena);
  if (!decoded) return decoded;
  const std::size_t invalid = FindInvalidText(*decoded);
  if (invalid != npos) return InvalidText(*decoded, invalid);
  if (source.endsInInvalidUtf16) {
    return ErrorAt(*decoded, decoded->size(), "the text is not UTF-16");
  }
  return decoded;
}

}  // namespace fernwick
