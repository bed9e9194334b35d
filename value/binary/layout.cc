#include "value/binary/layout.h"

namespace fernwick {
namespace {

constexpr std::size_t HeaderSize = BinaryHeader.size();

bool IsWidth(std::uint64_t width) {
  return width >= 1 && width <= 8;
}

}  // namespace

std::uint64_t BigEndianNumber(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

bool BinaryLayout::Read(std::string_view file, ParseFault& fault) {
  if (!file.starts_with(BinaryHeader))
    return fault.Set(BinarySignature.size(), "the version is not \"00\"");
  if (file.size() < HeaderSize + TrailerSize)
    return fault.Set(file.size(), "the file is cut short");
  file_ = file;
  const std::size_t trailer = file.size() - TrailerSize;
  const auto field = [&](std::size_t at, std::size_t width) {
    return BigEndianNumber(file.substr(trailer + at, width));
  };
  const std::uint64_t table = field(24, 8);
  offsetWidth_ = field(6, 1);
  referenceWidth_ = field(7, 1);
  objectCount_ = field(8, 8);
  topObject_ = field(16, 8);
  if (!IsWidth(offsetWidth_)) return fault.Set(trailer + 6, "the width of an offset is not 1 to 8");
  if (!IsWidth(referenceWidth_)) {
    return fault.Set(trailer + 7, "the width of a reference is not 1 to 8");
  }
  if (table < HeaderSize || table > trailer) {
    return fault.Set(trailer + 24, "the offset table is not between the header and the trailer");
  }
  offsetTable_ = static_cast<std::size_t>(table);
  if (objectCount_ > (trailer - offsetTable_) / offsetWidth_) {
    return fault.Set(trailer + 8, "the file is too short for the offset table");
  }
  if (topObject_ >= objectCount_) return fault.Set(trailer + 16, "the top object does not exist");
  return true;
}

}  // namespace fernwick
