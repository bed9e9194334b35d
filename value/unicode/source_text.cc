#include "value/unicode/source_text.h"

#include <utility>

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view BigEndianMark = "\xFE\xFF";
constexpr std::string_view LittleEndianMark = "\xFF\xFE";

SourceText DecodeUtf16(std::string_view bytes, ByteOrder order, Arena& arena) {
  auto [text, invalidAt] = TranscodeUtf16(bytes, order);
  return {.text = arena.Adopt(std::move(text)),
          .hasByteOrderMark = true,
          .endsInInvalidUtf16 = invalidAt != npos};
}

}  // namespace

SourceText DecodeSource(std::string_view bytes, Arena& arena) {
  if (bytes.starts_with(BigEndianMark)) {
    return DecodeUtf16(bytes.substr(2), ByteOrder::BigEndian, arena);
  }
  if (bytes.starts_with(LittleEndianMark)) {
    return DecodeUtf16(bytes.substr(2), ByteOrder::LittleEndian, arena);
  }
  const bool marked = bytes.starts_with(Utf8Mark);
  return {.text = bytes.substr(marked ? Utf8Mark.size() : 0), .hasByteOrderMark = marked};
}

}  // namespace fernwick
