#include "value/unicode/source_text.h"

#include <string>
#include <utility>

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view BigEndianMark = "\xFE\xFF";
constexpr std::string_view LittleEndianMark = "\xFF\xFE";

SourceText DecodeUtf16(std::string_view bytes, ByteOrder order) {
  auto [text, invalidAt] = TranscodeUtf16(bytes, order);
  auto source = OwnedSource(std::move(text));
  source.hasByteOrderMark = true;
  source.endsInInvalidUtf16 = invalidAt != NoPlace;
  return source;
}

}  // namespace

SourceText DecodeSource(SourceBuffer bytes) {
  const std::string_view all = bytes.View();
  if (all.starts_with(BigEndianMark)) return DecodeUtf16(all.substr(2), ByteOrder::BigEndian);
  if (all.starts_with(LittleEndianMark)) return DecodeUtf16(all.substr(2), ByteOrder::LittleEndian);
  const bool marked = all.starts_with(Utf8Mark);
  return {.buffer = std::move(bytes),
          .text = all.substr(marked ? Utf8Mark.size() : 0),
          .hasByteOrderMark = marked};
}

SourceText OwnedSource(std::string text) {
  SourceBuffer buffer(std::move(text));
  const auto view = buffer.View();
  return {.buffer = std::move(buffer), .text = view};
}

SharedBytes SharedOrCopied(const SourceText& source, const std::string& decoded,
                           std::string_view text) {
  if (text.data() == decoded.data()) return SharedBytes(std::string(text));
  return {source.buffer, text};
}

}  // namespace fernwick
