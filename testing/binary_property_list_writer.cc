#include "testing/binary_property_list_writer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "testing/binary_property_list_builder.h"
#include "value/utf8.h"

namespace fernwick::testing {
namespace {

// From 1970-01-01T00:00:00Z to 2001-01-01T00:00:00Z.
constexpr std::int64_t SecondsTo2001 = 978307200;

// How many bytes it takes to count up to `number`.
std::size_t WidthFor(std::uint64_t number) {
  std::size_t width = 1;
  while (width < 8 && number >> (8 * width) != 0) width *= 2;
  return width;
}

std::string IntegerObject(Integer integer) {
  const std::uint64_t bits = integer.Bits();
  if (integer.IsNegative()) return '\x13' + BigEndian(bits, 8);
  // Eight bytes are signed, so that the largest numbers take sixteen.
  if (bits >> 63 != 0) return '\x14' + BigEndian(0, 8) + BigEndian(bits, 8);
  switch (WidthFor(bits)) {
    case 1: return '\x10' + BigEndian(bits, 1);
    case 2: return '\x11' + BigEndian(bits, 2);
    case 4: return '\x12' + BigEndian(bits, 4);
    default: return '\x13' + BigEndian(bits, 8);
  }
}

std::u16string AsUtf16(std::string_view text) {
  std::u16string units;
  while (!text.empty()) {
    const auto [character, length] = DecodeUtf8(text);
    if (character < 0x10000) {
      units += static_cast<char16_t>(character);
    } else {
      units += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
    text.remove_prefix(length);
  }
  return units;
}

std::string StringObject(std::string_view text) {
  const bool isAscii = std::ranges::none_of(text, [](char c) { return (c & 0x80) != 0; });
  return isAscii ? AsciiObject(text) : Utf16Object(AsUtf16(text));
}

std::size_t CountObjects(const PropertyValue& value) {
  std::size_t count = 1;
  if (const auto* array = value.AsArray()) {
    for (const auto& element : *array) count += CountObjects(element);
  }
  if (const auto* dictionary = value.AsDictionary()) {
    for (const auto& entry : dictionary->Entries()) count += 1 + CountObjects(entry.value);
  }
  return count;
}

class BinaryWriter {
 public:
  // References are as wide as the count of objects asks, so that has to be known beforehand.
  explicit BinaryWriter(std::size_t objectCount) : referenceWidth_(WidthFor(objectCount - 1)) {}

  // Returns the object's number.
  std::uint64_t Add(const PropertyValue& value) {
    return value.Visit([this](const auto& content) { return AddContent(content); });
  }

  std::string TakeFile() const {
    std::uint64_t size = 8;
    for (const auto& object : objects_) size += object.size();
    return BinaryFile(objects_, {.offsetWidth = WidthFor(size), .referenceWidth = referenceWidth_});
  }

 private:
  std::uint64_t AddObject(std::string object) {
    objects_.push_back(std::move(object));
    return objects_.size() - 1;
  }

  std::uint64_t AddContent(const Array& array) {
    const auto number = AddObject({});
    References elements;
    for (const auto& element : array) elements.push_back(Add(element));
    objects_[number] = ArrayObject(elements, referenceWidth_);
    return number;
  }

  std::uint64_t AddContent(const Dictionary& dictionary) {
    const auto number = AddObject({});
    References keys;
    References values;
    for (const auto& [key, value] : dictionary.Entries()) {
      keys.push_back(AddObject(StringObject(key.View())));
      values.push_back(Add(value));
    }
    objects_[number] = DictionaryObject(keys, values, referenceWidth_);
    return number;
  }

  std::uint64_t AddContent(const String& string) {
    return AddObject(StringObject(string.text.View()));
  }
  std::uint64_t AddContent(const Data& data) { return AddObject(DataObject(data.bytes.View())); }
  std::uint64_t AddContent(const Date& date) {
    return AddObject(DateObject(static_cast<double>(date.seconds - SecondsTo2001)));
  }
  std::uint64_t AddContent(const Integer& integer) { return AddObject(IntegerObject(integer)); }
  std::uint64_t AddContent(double real) { return AddObject(RealObject(real)); }
  std::uint64_t AddContent(bool boolean) { return AddObject(boolean ? "\x09" : "\x08"); }

  std::size_t referenceWidth_;
  std::vector<std::string> objects_;
};

}  // namespace

std::string WriteBinaryPropertyList(const PropertyValue& value) {
  BinaryWriter writer(CountObjects(value));
  writer.Add(value);
  return writer.TakeFile();
}

}  // namespace fernwick::testing
