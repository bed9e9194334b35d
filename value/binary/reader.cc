// A recursive-descent reader over the object graph: it starts at the top object and follows the
// references of each array and dictionary, depth first. An array's elements and a dictionary's
// entries are allocated in the arena as one block each, after their count has been checked against
// the file; ASCII strings and data are views of the file, UTF-16 strings are transcoded once for
// each offset and cached.
//
// Objects may be shared, so the graph may expand to a tree that is exponentially larger than the
// file. Each value and each byte of text is therefore counted whenever it is reached, and the
// counts are limited by the size of the file plus a constant. A cycle is found by a flag for each
// object that is being read. Time and memory are linear in what is reached, and so in the size of
// the file plus that constant; UTF-16 strings cost a logarithmic lookup each.

#include "value/binary/reader.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "value/binary/layout.h"
#include "value/calendar_date.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

// By how much the counts of what is reached may exceed the size of the file in bytes.
constexpr std::uint64_t ExtraValues = std::uint64_t{1} << 16;
constexpr std::uint64_t ExtraBytes = std::uint64_t{1} << 26;

// A decoded marker byte, and where the bytes after it begin.
struct Object {
  std::uint64_t number;
  std::size_t offset;    // of the marker
  std::size_t contents;  // where the bytes after the marker and the count begin
  std::uint8_t marker;

  ObjectKind Kind() const { return static_cast<ObjectKind>(marker >> 4); }
  // A count, the base-2 logarithm of a width, or CountFollows.
  std::uint8_t LowBits() const { return marker & 0xF; }
};

// Looks up the objects of a file by their numbers and decodes their markers. Keeps the first
// fault of the whole reading.
class BinaryObjects {
 public:
  explicit BinaryObjects(std::string_view file) : file_(file) {}

  // Checks the header and the trailer.
  bool ReadLayout() { return layout_.Read(file_, fault_); }

  std::string_view File() const { return file_; }
  const BinaryLayout& Layout() const { return layout_; }
  const ParseFault& Fault() const { return fault_; }

  // Not inlined: its many callers are faster without the error path in them.
  [[gnu::noinline]] bool Fail(std::size_t offset, const char* message) {
    return fault_.Set(offset, message);
  }

  bool FailUnknown(const Object& object) {
    return Fail(object.offset, "an unknown kind of object");
  }

  // Finds the object that `referrer` (a byte offset) names.
  bool Locate(std::uint64_t number, std::size_t referrer, Object& object) {
    if (number >= layout_.ObjectCount()) return Fail(referrer, "a reference to no object");
    const std::uint64_t offset = layout_.OffsetOf(number);
    if (offset < BinaryHeader.size() || offset >= layout_.EndOfObjects()) {
      return Fail(referrer, "an object is not between the header and the offset table");
    }
    const auto at = static_cast<std::size_t>(offset);
    object = {number, at, at + 1, static_cast<std::uint8_t>(file_[at])};
    return true;
  }

  bool Bytes(const Object& object, std::uint64_t size, std::string_view& bytes) {
    if (size > layout_.EndOfObjects() - object.contents) {
      return Fail(object.offset, "an object is cut short");
    }
    bytes = file_.substr(object.contents, static_cast<std::size_t>(size));
    return true;
  }

  // Reads how many bytes, units or elements the object has, and moves its contents past the count.
  bool ReadCount(Object& object, std::uint64_t& count) {
    count = object.LowBits();
    return count != CountFollows || ReadExtendedCount(object, count);
  }

 private:
  bool ReadExtendedCount(Object& object, std::uint64_t& count) {
    std::string_view bytes;
    if (!Bytes(object, 1, bytes)) return false;
    const auto marker = static_cast<std::uint8_t>(bytes.front());
    const std::size_t width = std::size_t{1} << (marker & 0xF);
    if (marker >> 4 != static_cast<int>(ObjectKind::Integer) || width > 8) {
      return Fail(object.contents, "a count is not an integer");
    }
    ++object.contents;
    if (!Bytes(object, width, bytes)) return false;
    count = layout_.NumberAt(object.contents, width);
    object.contents += width;
    return true;
  }

  std::string_view file_;
  BinaryLayout layout_;
  ParseFault fault_;
};

bool ReadSimple(BinaryObjects& objects, const Object& object, PropertyValue& value) {
  if (object.marker == BinaryMarker::Null)
    return objects.Fail(object.offset, "null is no property-list value");
  if (object.marker != BinaryMarker::False && object.marker != BinaryMarker::True)
    return objects.FailUnknown(object);
  value = object.marker == BinaryMarker::True;
  return true;
}

bool ReadWideInteger(BinaryObjects& objects, const Object& object, std::string_view bytes,
                     PropertyValue& value) {
  constexpr std::uint64_t SignBit = std::uint64_t{1} << 63;
  const std::uint64_t high = BigEndianNumber(bytes.substr(0, 8));
  const std::uint64_t low = BigEndianNumber(bytes.substr(8));
  const bool isNegative = high == ~std::uint64_t{0} && low >= SignBit;
  if (high != 0 && !isNegative) {
    return objects.Fail(object.offset, "an integer lies outside -2^63 to 2^64-1");
  }
  value = isNegative ? Integer(static_cast<std::int64_t>(low)) : Integer(low);
  return true;
}

// One, two and four bytes are unsigned, eight and sixteen signed.
bool ReadInteger(BinaryObjects& objects, const Object& object, PropertyValue& value) {
  if (object.LowBits() > 4) return objects.FailUnknown(object);
  const std::size_t width = std::size_t{1} << object.LowBits();
  std::string_view bytes;
  if (!objects.Bytes(object, width, bytes)) return false;
  if (width == 16) return ReadWideInteger(objects, object, bytes, value);
  const std::uint64_t bits = objects.Layout().NumberAt(object.contents, width);
  value = width == 8 ? Integer(static_cast<std::int64_t>(bits)) : Integer(bits);
  return true;
}

bool ReadReal(BinaryObjects& objects, const Object& object, PropertyValue& value) {
  std::string_view bytes;
  if (object.LowBits() != 2 && object.LowBits() != 3) return objects.FailUnknown(object);
  if (!objects.Bytes(object, std::size_t{1} << object.LowBits(), bytes)) return false;
  const std::uint64_t bits = objects.Layout().NumberAt(object.contents, bytes.size());
  value = object.LowBits() == 3 ? std::bit_cast<double>(bits)
                                : double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
  return true;
}

bool ReadDate(BinaryObjects& objects, const Object& object, PropertyValue& value) {
  std::string_view bytes;
  if (object.marker != BinaryMarker::Date) return objects.FailUnknown(object);
  if (!objects.Bytes(object, 8, bytes)) return false;
  const auto date = DateFromSecondsSince2001(std::bit_cast<double>(BigEndianNumber(bytes)));
  if (!date) return objects.Fail(object.offset, "a date lies outside the years 1 to 9999");
  value = *date;
  return true;
}

// Reads keys, strings and data, and counts their bytes each time one is reached.
class BinaryLeaves {
 public:
  BinaryLeaves(BinaryObjects& objects, Arena& arena) : objects_(objects), arena_(arena) {}

  // REQUIRES: the layout has been read; called once, before all else.
  void Prepare() { isChecked_.resize(static_cast<std::size_t>(objects_.Layout().ObjectCount())); }

  bool ReadData(Object object, PropertyValue& value) {
    std::uint64_t size = 0;
    std::string_view bytes;
    if (!objects_.ReadCount(object, size) || !objects_.Bytes(object, size, bytes)) return false;
    if (!CountBytes(object.offset, size)) return false;
    value = Data{bytes};
    return true;
  }

  bool ReadString(const Object& object, PropertyValue& value) {
    std::string_view text;
    if (!ReadText(object, text)) return false;
    value = text;
    return true;
  }

  bool ReadText(const Object& object, std::string_view& text) {
    const bool isAscii = object.Kind() == ObjectKind::AsciiString;
    return isAscii ? ReadAsciiText(object, text) : ReadUtf16Text(object, text);
  }

 private:
  // Counts the bytes of a key, a string or data as they are in the file.
  bool CountBytes(std::size_t offset, std::uint64_t count) {
    if (count > objects_.File().size() + ExtraBytes - bytes_) {
      return objects_.Fail(offset,
                           "more bytes of keys, strings and data than the size of the file allows");
    }
    bytes_ += count;
    return true;
  }

  // Counts the bytes of a UTF-16 string that is decoded for the first time. Strings that do not
  // overlap fit into the file together; overlapping ones could decode to any amount of text.
  bool CountDecodedUtf16(const Object& object, std::string_view bytes) {
    if (bytes.size() > objects_.File().size() - decodedBytes_)
      return objects_.Fail(object.offset, "strings overlap");
    decodedBytes_ += bytes.size();
    return true;
  }

  bool ReadAsciiText(Object object, std::string_view& text) {
    std::uint64_t size = 0;
    if (!objects_.ReadCount(object, size) || !objects_.Bytes(object, size, text)) return false;
    if (!CountBytes(object.offset, size)) return false;
    if (!isChecked_[object.number]) {
      if (!IsPlainAscii(text)) return FailUnusualAscii(object, text);
      isChecked_[object.number] = true;
    }
    return true;
  }

  bool FailUnusualAscii(const Object& object, std::string_view bytes) {
    const bool isAscii = std::ranges::none_of(bytes, [](char byte) { return (byte & 0x80) != 0; });
    return isAscii ? FailNotXmlCharacter(object)
                   : objects_.Fail(object.offset, "a string is not ASCII");
  }

  bool ReadUtf16Text(Object object, std::string_view& text) {
    std::uint64_t units = 0;
    std::string_view bytes;
    if (!objects_.ReadCount(object, units)) return false;
    if (units > objects_.File().size())
      return objects_.Fail(object.offset, "an object is cut short");
    if (!objects_.Bytes(object, units * 2, bytes) || !CountBytes(object.offset, bytes.size()))
      return false;
    const auto known = decodedTexts_.find(object.offset);
    if (known == decodedTexts_.end()) return DecodeUtf16Text(object, bytes, text);
    text = known->second;
    return true;
  }

  bool DecodeUtf16Text(const Object& object, std::string_view bytes, std::string_view& text) {
    if (!CountDecodedUtf16(object, bytes)) return false;
    const auto transcoded = TranscodeUtf16(bytes, ByteOrder::BigEndian);
    if (transcoded.invalidAt != npos) return objects_.Fail(object.offset, "a string is not UTF-16");
    if (FindInvalidText(transcoded.text) != npos) return FailNotXmlCharacter(object);
    text = arena_.Copy(transcoded.text);
    decodedTexts_.emplace(object.offset, text);
    return true;
  }

  bool FailNotXmlCharacter(const Object& object) {
    return objects_.Fail(object.offset, "a string contains a character that XML cannot carry");
  }

  BinaryObjects& objects_;
  Arena& arena_;
  std::uint64_t bytes_ = 0;         // of keys, strings and data reached so far
  std::uint64_t decodedBytes_ = 0;  // of UTF-16 strings decoded so far
  std::vector<bool> isChecked_;     // by object: an ASCII string that has been validated
  // The decoded UTF-16 strings, by offset. A tree and not a hash table: the file chooses the
  // offsets and could make them collide.
  std::map<std::size_t, std::string_view> decodedTexts_;
};

// Reads the values of a file, containers recursively.
class BinaryPropertyListReader {
 public:
  BinaryPropertyListReader(std::string_view file, Arena& arena, LocationBuilder* locations)
      : objects_(file), leaves_(objects_, arena), arena_(arena), locations_(locations) {}

  Result<PropertyValue> Read() {
    PropertyValue value;
    if (ReadFile(value)) return value;
    return Error{objects_.Fault().Message(), FileLocation{.byte = objects_.Fault().Offset()}};
  }

 private:
  bool ReadFile(PropertyValue& value) {
    if (!objects_.ReadLayout()) return false;
    leaves_.Prepare();
    isOpen_.resize(static_cast<std::size_t>(objects_.Layout().ObjectCount()));
    return ReadValue(objects_.Layout().TopObject(), TopObjectReference(), value);
  }

  // The offset of the trailer's field for the top object.
  std::size_t TopObjectReference() const { return objects_.File().size() - 16; }

  bool ReadValue(std::uint64_t number, std::size_t referrer, PropertyValue& value) {
    Object object{};
    if (!objects_.Locate(number, referrer, object)) return false;
    if (locations_ == nullptr) return ReadContents(object, value);
    return ReadWithLocation(object, value);
  }

  // The location of a container that was read before is that of the first time, with all that is
  // in it.
  bool ReadWithLocation(const Object& object, PropertyValue& value) {
    const auto known = containers_.find(object.number);
    if (known != containers_.end()) {
      auto* const locations = std::exchange(locations_, nullptr);
      locations->AddValue(known->second);
      const bool isRead = ReadContents(object, value);
      locations_ = locations;
      return isRead;
    }
    locations_->BeginValue(object.offset);
    if (!ReadContents(object, value)) return false;
    const auto location = locations_->EndValue();
    if (!location.Entries().empty() || !location.Elements().empty()) {
      containers_.emplace(object.number, location);
    }
    return true;
  }

  bool ReadContents(const Object& object, PropertyValue& value) {
    switch (object.Kind()) {
      case ObjectKind::Simple: return ReadSimple(objects_, object, value);
      case ObjectKind::Integer: return ReadInteger(objects_, object, value);
      case ObjectKind::Real: return ReadReal(objects_, object, value);
      case ObjectKind::Date: return ReadDate(objects_, object, value);
      case ObjectKind::Data: return leaves_.ReadData(object, value);
      case ObjectKind::AsciiString:
      case ObjectKind::Utf16String: return leaves_.ReadString(object, value);
      case ObjectKind::Array:
      case ObjectKind::Dictionary: return ReadContainer(object, value);
      case ObjectKind::Uid: return objects_.Fail(object.offset, "a UID is no property-list value");
      case ObjectKind::Set: return objects_.Fail(object.offset, "a set is no property-list value");
    }
    return objects_.FailUnknown(object);
  }

  // Counts values before memory is allocated for them.
  bool CountValues(std::size_t offset, std::uint64_t count) {
    if (count > objects_.File().size() + ExtraValues - values_) {
      return objects_.Fail(offset, "more values than the size of the file allows");
    }
    values_ += count;
    return true;
  }

  // A container is read each time it is reached; CountValues limits how often that is.
  bool ReadContainer(const Object& object, PropertyValue& value) {
    if (isOpen_[object.number]) return objects_.Fail(object.offset, "an object contains itself");
    if (nesting_ == MaxNesting) return objects_.Fail(object.offset, NestedTooDeeply);
    ++nesting_;
    isOpen_[object.number] = true;
    const bool isArray = object.Kind() == ObjectKind::Array;
    if (!(isArray ? ReadArray(object, value) : ReadDictionary(object, value))) return false;
    isOpen_[object.number] = false;
    --nesting_;
    return true;
  }

  // Finds the references of a container, which has `count` elements of `perElement` references
  // each.
  bool ReadReferences(Object object, std::uint64_t perElement, std::uint64_t& count,
                      std::size_t& references) {
    if (!objects_.ReadCount(object, count)) return false;
    if (count > objects_.File().size())
      return objects_.Fail(object.offset, "an object is cut short");
    const std::uint64_t size = count * perElement * objects_.Layout().ReferenceWidth();
    std::string_view bytes;
    references = object.contents;
    return objects_.Bytes(object, size, bytes) && CountValues(object.offset, count);
  }

  std::uint64_t ReferenceAt(std::size_t references, std::uint64_t index) const {
    const std::size_t width = objects_.Layout().ReferenceWidth();
    return objects_.Layout().NumberAt(references + static_cast<std::size_t>(index) * width, width);
  }

  bool ReadArray(const Object& object, PropertyValue& value) {
    std::uint64_t count = 0;
    std::size_t references = 0;
    if (!ReadReferences(object, 1, count, references)) return false;
    const auto size = static_cast<std::size_t>(count);
    if (locations_ != nullptr) locations_->Expect(size);
    auto* elements = arena_.Allocate<PropertyValue>(size);
    for (std::size_t i = 0; i < size; ++i) {
      auto& element = *std::construct_at(elements + i);
      if (!ReadValue(ReferenceAt(references, i), object.offset, element)) return false;
    }
    value = Array(std::span<const PropertyValue>(elements, size));
    return true;
  }

  bool ReadDictionary(const Object& object, PropertyValue& value) {
    std::uint64_t count = 0;
    std::size_t references = 0;  // all the keys, then all the values
    if (!ReadReferences(object, 2, count, references)) return false;
    const auto size = static_cast<std::size_t>(count);
    if (locations_ != nullptr) locations_->Expect(size);
    auto* entries = arena_.Allocate<DictionaryEntry>(size);
    for (std::size_t i = 0; i < size; ++i) {
      auto& entry = *std::construct_at(entries + i);
      if (!ReadKey(ReferenceAt(references, i), object.offset, entry.key)) return false;
      if (!ReadValue(ReferenceAt(references, size + i), object.offset, entry.value)) return false;
    }
    value = Dictionary(WithoutRepeatedKeys(std::span(entries, size)));
    return true;
  }

  bool ReadKey(std::uint64_t number, std::size_t referrer, std::string_view& key) {
    Object object{};
    if (!objects_.Locate(number, referrer, object)) return false;
    if (object.Kind() != ObjectKind::AsciiString && object.Kind() != ObjectKind::Utf16String) {
      return objects_.Fail(object.offset, "a key is not a string");
    }
    if (!leaves_.ReadText(object, key)) return false;
    if (locations_ != nullptr) locations_->Key(key, object.offset);
    return true;
  }

  BinaryObjects objects_;
  BinaryLeaves leaves_;
  Arena& arena_;
  LocationBuilder* locations_;                         // may be null
  std::map<std::uint64_t, ValueLocation> containers_;  // by object, those whose location is known
  std::uint64_t values_ = 1;                           // counted so far, the top object included
  std::size_t nesting_ = 0;
  std::vector<bool> isOpen_;  // by object: a container that is being read
};

}  // namespace

Result<PropertyValue> ParseBinaryPropertyList(std::string_view file, Arena& arena,
                                              LocationBuilder* locations) {
  return BinaryPropertyListReader(file, arena, locations).Read();
}

}  // namespace fernwick
