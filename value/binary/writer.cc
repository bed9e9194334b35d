// Two passes. The first numbers the objects in pre-order, encodes the leaves and collects the
// references of each array and dictionary; equal strings share an object, found by a tree of the
// strings written so far. The width of a reference depends on the number of objects, so containers
// are encoded in the second pass, which joins all objects; the offset table and the trailer follow.
// Costs linear time, plus a logarithmic lookup for each string, and memory of a few bytes for each
// value besides the file itself.

#include "value/binary/writer.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "value/binary/layout.h"
#include "value/calendar_date.h"
#include "value/unicode/utf8.h"

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

// How many objects and references a value has, strings that are equal counted each.
struct Counts {
  std::size_t objects = 0;
  std::size_t references = 0;

  void Add(const PropertyValue& value) {
    ++objects;
    if (const auto array = value.AsArray()) {
      references += array->size();
      for (const auto& element : *array) Add(element);
    } else if (const auto dictionary = value.AsDictionary()) {
      objects += dictionary->Size();
      references += 2 * dictionary->Size();
      for (const auto& entry : dictionary->Entries()) Add(entry.value);
    }
  }
};

enum class WrittenKind : std::uint8_t { Leaf, Array, Dictionary };

// An object that the first pass has numbered: its kind and the end of its part of the encoded
// leaves, or, of a container, of the references. Its part begins where that of the one before it
// ends. In eight bytes, since a file may have millions.
class WrittenObject {
 public:
  WrittenObject(std::size_t end, WrittenKind kind)
      : packed_(std::uint64_t{end} << 2 | static_cast<std::uint64_t>(kind)) {}

  std::size_t End() const { return static_cast<std::size_t>(packed_ >> 2); }
  WrittenKind Kind() const { return static_cast<WrittenKind>(packed_ & 3); }

 private:
  std::uint64_t packed_;
};

// The first pass is the constructor, the second is File().
class BinaryWriter {
 public:
  explicit BinaryWriter(const PropertyValue& value) {
    Counts counts;
    counts.Add(value);
    objects_.reserve(counts.objects);
    references_.reserve(counts.references);
    Add(value);
  }

  // Header, objects, offset table and trailer.
  std::string File() const {
    const std::size_t referenceWidth = WidthFor(objects_.size() - 1);
    std::uint64_t offsetTable = BinaryHeader.size();
    ForEachObject(referenceWidth, [&](std::uint64_t size, auto) { offsetTable += size; });
    const std::size_t offsetWidth = WidthFor(offsetTable);
    std::string file;
    file.reserve(offsetTable + objects_.size() * offsetWidth + TrailerSize);
    file = BinaryHeader;
    ForEachObject(referenceWidth, [&](std::uint64_t, auto append) { append(file); });
    std::uint64_t offset = BinaryHeader.size();
    ForEachObject(referenceWidth, [&](std::uint64_t size, auto) {
      AppendBigEndian(file, offset, offsetWidth);
      offset += size;
    });
    file.append(6, '\0');
    file.push_back(static_cast<char>(offsetWidth));
    file.push_back(static_cast<char>(referenceWidth));
    AppendBigEndian(file, objects_.size(), 8);
    AppendBigEndian(file, 0, 8);  // the top object was reached first
    AppendBigEndian(file, offsetTable, 8);
    return file;
  }

 private:
  // Returns the object's number.
  std::uint32_t Add(const PropertyValue& value) {
    return value.Visit([this](const auto& content) { return AddContent(content); });
  }

  std::uint32_t AddLeaf(std::string_view object) {
    leaves_ += object;
    return AddObject(leaves_.size(), WrittenKind::Leaf);
  }

  std::uint32_t AddObject(std::size_t end, WrittenKind kind) {
    objects_.emplace_back(end, kind);
    return static_cast<std::uint32_t>(objects_.size() - 1);
  }

  // Adds the object and reserves its references. Returns the index of the first.
  std::size_t AddContainer(std::size_t references, WrittenKind kind) {
    const auto first = references_.size();
    references_.resize(first + references);
    AddObject(references_.size(), kind);
    return first;
  }

  std::uint32_t AddContent(Array array) {
    const auto number = static_cast<std::uint32_t>(objects_.size());
    auto reference = AddContainer(array.size(), WrittenKind::Array);
    for (const auto& element : array) references_[reference++] = Add(element);
    return number;
  }

  // The keys come first.
  std::uint32_t AddContent(Dictionary dictionary) {
    const auto number = static_cast<std::uint32_t>(objects_.size());
    auto reference = AddContainer(2 * dictionary.Size(), WrittenKind::Dictionary);
    for (const auto& entry : dictionary.Entries()) references_[reference++] = AddText(entry.key);
    for (const auto& entry : dictionary.Entries()) references_[reference++] = Add(entry.value);
    return number;
  }

  std::uint32_t AddContent(std::string_view string) { return AddText(string); }
  std::uint32_t AddContent(const Data& data) {
    return AddLeaf(CountedMarker(ObjectKind::Data, data.bytes.size()).append(data.bytes));
  }
  std::uint32_t AddContent(const Date& date) {
    return AddLeaf(DoubleObject(BinaryMarker::Date, SecondsSince2001(date)));
  }
  std::uint32_t AddContent(const Integer& integer) { return AddLeaf(IntegerObject(integer)); }
  std::uint32_t AddContent(double real) {
    return AddLeaf(DoubleObject(BinaryMarker::Double, real));
  }
  std::uint32_t AddContent(bool boolean) {
    const char marker = static_cast<char>(boolean ? BinaryMarker::True : BinaryMarker::False);
    return AddLeaf({&marker, 1});
  }

  std::uint32_t AddText(std::string_view text) {
    const auto known = texts_.find(text);
    if (known != texts_.end()) return known->second;
    const auto number = AddLeaf(StringObject(text));
    texts_.emplace(text, number);
    return number;
  }

  // Calls `visit` with the size of each object and a function that appends it to a string.
  template <typename Visit>
  void ForEachObject(std::size_t referenceWidth, Visit visit) const {
    std::size_t leaf = 0;
    std::size_t reference = 0;
    for (const auto object : objects_) {
      const auto end = object.End();
      if (object.Kind() == WrittenKind::Leaf) {
        const auto bytes = std::string_view(leaves_).substr(leaf, end - leaf);
        leaf = end;
        visit(bytes.size(), [bytes](std::string& file) { file += bytes; });
      } else {
        const std::span references(references_.begin() + static_cast<std::ptrdiff_t>(reference),
                                   end - reference);
        reference = end;
        const bool isArray = object.Kind() == WrittenKind::Array;
        const auto marker = CountedMarker(isArray ? ObjectKind::Array : ObjectKind::Dictionary,
                                          references.size() / (isArray ? 1 : 2));
        visit(marker.size() + references.size() * referenceWidth, [&](std::string& file) {
          file += marker;
          for (const auto number : references) AppendBigEndian(file, number, referenceWidth);
        });
      }
    }
  }

  std::vector<WrittenObject> objects_;
  std::string leaves_;                               // encoded, one after the other
  std::vector<std::uint32_t> references_;            // of the containers, by number
  std::map<std::string_view, std::uint32_t> texts_;  // views the value that is written
};

}  // namespace

std::string WriteBinaryPropertyList(const PropertyValue& value) {
  return BinaryWriter(value).File();
}

}  // namespace fernwick
