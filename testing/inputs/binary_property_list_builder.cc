#include "testing/inputs/binary_property_list_builder.h"

#include <bit>

namespace fernwick::testing {
namespace {

constexpr std::string_view Header = "bplist00";
constexpr unsigned DataKind = 0x4;
constexpr unsigned AsciiKind = 0x5;
constexpr unsigned Utf16Kind = 0x6;
constexpr unsigned ArrayKind = 0xA;
constexpr unsigned DictionaryKind = 0xD;
constexpr std::uint64_t CountFollows = 0xF;

std::string ReferenceBytes(const References& references, std::size_t width) {
  std::string bytes;
  for (const auto reference : references) bytes += BigEndian(reference, width);
  return bytes;
}

std::string ExtendedCount(std::uint64_t count) {
  if (count <= 0xFF) return '\x10' + BigEndian(count, 1);
  if (count <= 0xFFFF) return '\x11' + BigEndian(count, 2);
  if (count <= 0xFFFFFFFF) return '\x12' + BigEndian(count, 4);
  return '\x13' + BigEndian(count, 8);
}

}  // namespace

std::string BigEndian(std::uint64_t number, std::size_t width) {
  std::string bytes(width, '\0');
  for (std::size_t i = width; i > 0; number >>= 8) bytes[--i] = static_cast<char>(number & 0xFF);
  return bytes;
}

std::string CountedMarker(unsigned kind, std::uint64_t count) {
  if (count < CountFollows) return BigEndian(kind << 4 | count, 1);
  return BigEndian(kind << 4 | CountFollows, 1) + ExtendedCount(count);
}

std::string AsciiObject(std::string_view text) {
  return CountedMarker(AsciiKind, text.size()) + std::string(text);
}

std::string Utf16Object(const std::u16string& text) {
  std::string object = CountedMarker(Utf16Kind, text.size());
  for (const char16_t unit : text) object += BigEndian(unit, 2);
  return object;
}

std::string DataObject(std::string_view bytes) {
  return CountedMarker(DataKind, bytes.size()) + std::string(bytes);
}

std::string RealObject(double real) {
  return '\x23' + BigEndian(std::bit_cast<std::uint64_t>(real), 8);
}

std::string DateObject(double secondsSince2001) {
  return '\x33' + BigEndian(std::bit_cast<std::uint64_t>(secondsSince2001), 8);
}

std::string ArrayObject(const References& elements, std::size_t referenceWidth) {
  return CountedMarker(ArrayKind, elements.size()) + ReferenceBytes(elements, referenceWidth);
}

std::string DictionaryObject(const References& keys, const References& values,
                             std::size_t referenceWidth) {
  return CountedMarker(DictionaryKind, keys.size()) + ReferenceBytes(keys, referenceWidth) +
         ReferenceBytes(values, referenceWidth);
}

std::string BinaryFile(const std::vector<std::string>& objects, const BinaryShape& shape) {
  std::string file(Header);
  std::string offsets;
  for (const auto& object : objects) {
    offsets += BigEndian(file.size(), shape.offsetWidth);
    file += object;
  }
  for (const auto offset : shape.furtherOffsets) offsets += BigEndian(offset, shape.offsetWidth);
  const auto table = file.size();
  file += offsets + std::string(6, '\0');
  file += BigEndian(shape.offsetWidth, 1) + BigEndian(shape.referenceWidth, 1);
  file += BigEndian(shape.objectCount.value_or(objects.size() + shape.furtherOffsets.size()), 8);
  file += BigEndian(shape.topObject, 8) + BigEndian(shape.offsetTable.value_or(table), 8);
  return file;
}

}  // namespace fernwick::testing
