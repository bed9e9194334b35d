#include "value/binary/writer.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "value/binary/layout.h"
#include "value/calendar_date.h"
#include "value/unicode/utf8.h"

// Two passes. The first numbers the objects in pre-order, encodes the leaves and collects the
// references of each array and dictionary; equal strings share an object, found by a tree of the
// strings written so far. The width of a reference depends on the number of objects, so containers
// are encoded in the second pass. Then all objects are joined and the offset table and the trailer
// follow. Costs linear time, plus a logarithmic lookup for each string.

namespace fernwick {
namespace {

void AppendBigEndian(std::string& bytes, std::uint64_t number, std::size_t width) {
  for (std::size_t i = width; i-- > 0;) bytes.push_back(static_cast<char>(number >> (8 * i)));
}

// The base-2 logarithm of the smallest width, 1, 2, 4 or 8 bytes, that the number fits.
unsigned WidthExponent(std::uint64_t number) {
  unsigned exponent = 0;
  while (exponent < 3 && number >> (8u << exponent) != 0) ++exponent;
  return exponent;
}

std::size_t WidthFor(std::uint64_t number) {
  return std::size_t{1} << WidthExponent(number);
}

// A marker byte of a kind and its low four bits.
char Marker(ObjectKind kind, unsigned low) {
  return static_cast<char>(static_cast<unsigned>(kind) << 4 | low);
}

std::string UnsignedObject(std::uint64_t number) {
  const unsigned exponent = WidthExponent(number);
  std::string object = {Marker(ObjectKind::Integer, exponent)};
  AppendBigEndian(object, number, std::size_t{1} << exponent);
  return object;
}

std::string IntegerObject(const Integer& integer) {
  const std::uint64_t bits = integer.Bits();
  // Eight bytes are signed, so the largest numbers need sixteen.
  const bool needsSixteen = !integer.IsNegative() && bits >> 63 != 0;
  if (!needsSixteen) return UnsignedObject(bits);
  std::string object = {static_cast<char>(BinaryMarker::WideInteger)};
  AppendBigEndian(object, 0, 8);
  AppendBigEndian(object, bits, 8);
  return object;
}

std::string DoubleObject(std::uint8_t marker, double number) {
  std::string object = {static_cast<char>(marker)};
  AppendBigEndian(object, std::bit_cast<std::uint64_t>(number), 8);
  return object;
}

// A marker that contains the count, or is followed by it as an integer when it does not fit.
std::string CountedMarker(ObjectKind kind, std::uint64_t count) {
  if (count < CountFollows) return {Marker(kind, static_cast<unsigned>(count))};
  return Marker(kind, CountFollows) + UnsignedObject(count);
}

std::string Utf16BigEndian(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const auto [character, length] = DecodeUtf8(text);
    if (character < 0x10000) {
      AppendBigEndian(bytes, character, 2);
    } else {
      AppendBigEndian(bytes, 0xD800 + ((character - 0x10000) >> 10), 2);
      AppendBigEndian(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF), 2);
    }
    text.remove_prefix(length);
  }
  return bytes;
}

std::string StringObject(std::string_view text) {
  const bool isAscii = std::ranges::none_of(text, [](char c) { return (c & 0x80) != 0; });
  if (isAscii) return CountedMarker(ObjectKind::AsciiString, text.size()).append(text);
  const auto units = Utf16BigEndian(text);
  return CountedMarker(ObjectKind::Utf16String, units.size() / 2) + units;
}

// The objects that an array or dictionary refers to, by number; a dictionary's keys come first.
struct Container {
  ObjectKind kind;
  std::uint64_t count;
  std::vector<std::uint64_t> references;
};

class BinaryWriter {
 public:
  // Returns the object's number.
  std::uint64_t Add(const PropertyValue& value) {
    return value.Visit([this](const auto& content) { return AddContent(content); });
  }

  std::string TakeFile() {
    const std::size_t referenceWidth = WidthFor(objects_.size() - 1);
    for (const auto& [number, container] : containers_) {
      objects_[number] = ContainerObject(container, referenceWidth);
    }
    return JoinObjects(referenceWidth);
  }

 private:
  std::uint64_t AddObject(std::string object) {
    objects_.push_back(std::move(object));
    return objects_.size() - 1;
  }

  std::uint64_t AddContent(Array array) {
    const auto number = AddObject({});
    Container container{ObjectKind::Array, array.size(), {}};
    for (const auto& element : array) container.references.push_back(Add(element));
    containers_.emplace(number, std::move(container));
    return number;
  }

  std::uint64_t AddContent(Dictionary dictionary) {
    const auto number = AddObject({});
    Container container{ObjectKind::Dictionary, dictionary.Size(), {}};
    for (const auto& entry : dictionary.Entries()) {
      container.references.push_back(AddText(entry.key));
    }
    for (const auto& entry : dictionary.Entries()) {
      container.references.push_back(Add(entry.value));
    }
    containers_.emplace(number, std::move(container));
    return number;
  }

  std::uint64_t AddContent(std::string_view string) { return AddText(string); }
  std::uint64_t AddContent(const Data& data) {
    return AddObject(CountedMarker(ObjectKind::Data, data.bytes.size()).append(data.bytes));
  }
  std::uint64_t AddContent(const Date& date) {
    return AddObject(DoubleObject(BinaryMarker::Date, SecondsSince2001(date)));
  }
  std::uint64_t AddContent(const Integer& integer) { return AddObject(IntegerObject(integer)); }
  std::uint64_t AddContent(double real) {
    return AddObject(DoubleObject(BinaryMarker::Double, real));
  }
  std::uint64_t AddContent(bool boolean) {
    return AddObject({static_cast<char>(boolean ? BinaryMarker::True : BinaryMarker::False)});
  }

  std::uint64_t AddText(std::string_view text) {
    const auto known = texts_.find(text);
    if (known != texts_.end()) return known->second;
    const auto number = AddObject(StringObject(text));
    texts_.emplace(text, number);
    return number;
  }

  static std::string ContainerObject(const Container& container, std::size_t referenceWidth) {
    auto object = CountedMarker(container.kind, container.count);
    for (const auto reference : container.references) {
      AppendBigEndian(object, reference, referenceWidth);
    }
    return object;
  }

  // Header, objects, offset table and trailer.
  std::string JoinObjects(std::size_t referenceWidth) const {
    std::string file(BinaryHeader);
    std::vector<std::uint64_t> offsets;
    for (const auto& object : objects_) {
      offsets.push_back(file.size());
      file += object;
    }
    const std::uint64_t offsetTable = file.size();
    const std::size_t offsetWidth = WidthFor(offsetTable);
    for (const auto offset : offsets) AppendBigEndian(file, offset, offsetWidth);
    file.append(6, '\0');
    file.push_back(static_cast<char>(offsetWidth));
    file.push_back(static_cast<char>(referenceWidth));
    AppendBigEndian(file, objects_.size(), 8);
    AppendBigEndian(file, 0, 8);  // the top object was reached first
    AppendBigEndian(file, offsetTable, 8);
    return file;
  }

  std::vector<std::string> objects_;
  std::map<std::uint64_t, Container> containers_;    // by object number; encoded in the second pass
  std::map<std::string_view, std::uint64_t> texts_;  // views the value that is written
};

}  // namespace

std::string WriteBinaryPropertyList(const PropertyValue& value) {
  BinaryWriter writer;
  writer.Add(value);
  return writer.TakeFile();
}

}  // namespace fernwick
