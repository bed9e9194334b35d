#include "value/binary/reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "value/binary/layout.h"
#include "value/calendar_date.h"
#include "value/decoded_bytes.h"
#include "value/dictionary_key.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr std::uint64_t MaximumValues = std::uint64_t{1} << 24;

// Up to this many bytes a key, a string or data costs no more than the value that it is.
constexpr std::uint64_t ShortText = 64;

// How many bytes of longer keys, strings and data one file may reach in all: as many as the largest
// file could hold that shares nothing. Telling keys apart, and writing what was read, takes time
// and room for all of them, so a few long ones that are shared must not be free.
constexpr std::uint64_t MaximumLongBytes = std::uint64_t{1} << 30;

// The kinds of object that a marker byte can begin, in its high four bits.
enum class ObjectKind : std::uint8_t {
  Simple = 0x0,
  Integer = 0x1,
  Real = 0x2,
  Date = 0x3,
  Data = 0x4,
  AsciiString = 0x5,
  Utf16String = 0x6,
  Uid = 0x8,
  Array = 0xA,
  Set = 0xC,
  Dictionary = 0xD,
};

constexpr std::uint8_t NullMarker = 0x00;
constexpr std::uint8_t FalseMarker = 0x08;
constexpr std::uint8_t TrueMarker = 0x09;
constexpr std::uint8_t DateMarker = 0x33;
constexpr std::uint8_t CountFollows = 0xF;

// A marker and what it says of the bytes behind it.
struct Object {
  std::uint64_t number;
  std::size_t offset;    // of the marker
  std::size_t contents;  // where what it holds begins
  std::uint8_t marker;

  ObjectKind Kind() const { return static_cast<ObjectKind>(marker >> 4); }
  std::uint8_t Size() const { return marker & 0xF; }
};

// What is known of an object.
enum class State : std::uint8_t {
  New,
  Open,   // a container around the place that is read
  Known,  // a container or an ASCII string that has been read once
};

// What has been reached so far, each time it was.
struct Tally {
  std::uint64_t values;
  std::uint64_t longBytes;  // of keys, strings and data longer than ShortText
};

// An array or dictionary that has been reached a second time: it is shared from then on, so that a
// few bytes of shared references cost what is in the file and not what they stand for.
struct FinishedContainer {
  PropertyValue value;
  Tally tally;         // of everything inside it
  std::size_t height;  // how many containers are nested in it at most, itself included
};

// A key that has been read.
struct KnownKey {
  std::uint64_t number;  // of the object
  std::size_t offset;
  std::optional<DictionaryKey> key;
};

class BinaryPropertyListReader {
 public:
  BinaryPropertyListReader(const SourceBuffer& file, PlaceRecorder* places)
      : buffer_(file), file_(file.View()), places_(places) {}

  ParseOutcome Read() {
    PropertyValue value = Unread;
    if (!ReadFile(value)) {
      return {{}, "byte " + std::to_string(fault_.Offset()) + ": " + fault_.Message()};
    }
    return {std::move(value), {}};
  }

 private:
  // What stands in the place of a value until it has been read.
  static constexpr bool Unread = false;

  bool ReadFile(PropertyValue& value) {
    if (!layout_.Read(file_, fault_)) return false;
    states_.resize(static_cast<std::size_t>(layout_.ObjectCount()), State::New);
    return ReadValue(layout_.TopObject(), TopObjectPlace(), value);
  }

  // Where the trailer names the top object.
  std::size_t TopObjectPlace() const { return file_.size() - 16; }

  // Not part of its many callers, which would be the slower for it.
  [[gnu::noinline]] bool Fail(std::size_t offset, const char* message) {
    return fault_.Set(offset, message);
  }

  // Books values before room is made for them.
  bool CountValues(std::size_t offset, std::uint64_t count) {
    if (count > MaximumValues - tally_.values) return Fail(offset, "more than 2^24 values");
    tally_.values += count;
    return true;
  }

  bool CountLongBytes(std::size_t offset, std::uint64_t count) {
    if (count > MaximumLongBytes - tally_.longBytes) {
      return Fail(offset, "more than 2^30 bytes of long keys, strings and data");
    }
    tally_.longBytes += count;
    return true;
  }

  // Books the bytes of one key, string or data.
  bool CountBytes(std::size_t offset, std::uint64_t size) {
    return size <= ShortText || CountLongBytes(offset, size);
  }

  // Books the bytes of a string that is looked at for the first time. Strings that do not overlap
  // fit into the file together; those that do could make it stand for any amount of text.
  bool CountText(const Object& object, std::string_view bytes) {
    if (bytes.size() > file_.size() - textBytes_) return Fail(object.offset, "strings overlap");
    textBytes_ += bytes.size();
    return true;
  }

  // Finds the object that `referrer` (a byte offset) names.
  bool Locate(std::uint64_t number, std::size_t referrer, Object& object) {
    if (number >= layout_.ObjectCount()) return Fail(referrer, "a reference to no object");
    const std::uint64_t offset = layout_.OffsetOf(number);
    if (offset < BinarySignature.size() + 1 || offset >= layout_.EndOfObjects()) {
      return Fail(referrer, "an object lies outside the file");
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

  // How many bytes, units or elements the object holds; its contents then begin behind the count.
  bool ReadCount(Object& object, std::uint64_t& count) {
    count = object.Size();
    return count != CountFollows || ReadCountBehind(object, count);
  }

  bool ReadCountBehind(Object& object, std::uint64_t& count) {
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

  bool ReadValue(std::uint64_t number, std::size_t referrer, PropertyValue& value) {
    Object object{};
    if (!Locate(number, referrer, object)) return false;
    if (places_ != nullptr) places_->BeginValue(object.offset);
    if (!ReadContents(object, value)) return false;
    if (places_ != nullptr) places_->EndValue();
    return true;
  }

  bool ReadContents(const Object& object, PropertyValue& value) {
    switch (object.Kind()) {
      case ObjectKind::Simple: return ReadSimple(object, value);
      case ObjectKind::Integer: return ReadInteger(object, value);
      case ObjectKind::Real: return ReadReal(object, value);
      case ObjectKind::Date: return ReadDate(object, value);
      case ObjectKind::Data: return ReadData(object, value);
      case ObjectKind::AsciiString:
      case ObjectKind::Utf16String: return ReadString(object, value);
      case ObjectKind::Array:
      case ObjectKind::Dictionary: return ReadContainer(object, value);
      case ObjectKind::Uid: return Fail(object.offset, "a UID is no property-list value");
      case ObjectKind::Set: return Fail(object.offset, "a set is no property-list value");
    }
    return FailUnknown(object);
  }

  bool FailUnknown(const Object& object) {
    return Fail(object.offset, "an unknown kind of object");
  }

  bool ReadSimple(const Object& object, PropertyValue& value) {
    if (object.marker == NullMarker) return Fail(object.offset, "null is no property-list value");
    if (object.marker != FalseMarker && object.marker != TrueMarker) return FailUnknown(object);
    value = object.marker == TrueMarker;
    return true;
  }

  // One, two and four bytes are unsigned, eight and sixteen signed.
  bool ReadInteger(const Object& object, PropertyValue& value) {
    if (object.Size() > 4) return FailUnknown(object);
    const std::size_t width = std::size_t{1} << object.Size();
    std::string_view bytes;
    if (!Bytes(object, width, bytes)) return false;
    if (width == 16) return ReadWideInteger(object, bytes, value);
    const std::uint64_t bits = layout_.NumberAt(object.contents, width);
    value = width == 8 ? Integer(static_cast<std::int64_t>(bits)) : Integer(bits);
    return true;
  }

  bool ReadWideInteger(const Object& object, std::string_view bytes, PropertyValue& value) {
    constexpr std::uint64_t SignBit = std::uint64_t{1} << 63;
    const std::uint64_t high = BigEndianNumber(bytes.substr(0, 8));
    const std::uint64_t low = BigEndianNumber(bytes.substr(8));
    const bool isNegative = high == ~std::uint64_t{0} && low >= SignBit;
    if (high != 0 && !isNegative) {
      return Fail(object.offset, "an integer lies outside -2^63 to 2^64-1");
    }
    value = isNegative ? Integer(static_cast<std::int64_t>(low)) : Integer(low);
    return true;
  }

  bool ReadReal(const Object& object, PropertyValue& value) {
    std::string_view bytes;
    if (object.Size() != 2 && object.Size() != 3) return FailUnknown(object);
    if (!Bytes(object, std::size_t{1} << object.Size(), bytes)) return false;
    const std::uint64_t bits = layout_.NumberAt(object.contents, bytes.size());
    value = object.Size() == 3 ? std::bit_cast<double>(bits)
                               : double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
    return true;
  }

  bool ReadDate(const Object& object, PropertyValue& value) {
    std::string_view bytes;
    if (object.marker != DateMarker) return FailUnknown(object);
    if (!Bytes(object, 8, bytes)) return false;
    const auto date = DateFromSecondsSince2001(std::bit_cast<double>(BigEndianNumber(bytes)));
    if (!date) return Fail(object.offset, "a date lies outside the years 1 to 9999");
    value = *date;
    return true;
  }

  bool ReadData(Object object, PropertyValue& value) {
    std::uint64_t size = 0;
    std::string_view bytes;
    if (!ReadCount(object, size) || !Bytes(object, size, bytes)) return false;
    if (!CountBytes(object.offset, size)) return false;
    value = Data{SharedBytes(buffer_, bytes)};
    return true;
  }

  bool ReadString(const Object& object, PropertyValue& value) {
    SharedBytes text;
    if (!ReadText(object, text)) return false;
    value = String{std::move(text)};
    return true;
  }

  bool ReadText(const Object& object, SharedBytes& text) {
    const bool isAscii = object.Kind() == ObjectKind::AsciiString;
    if (!(isAscii ? ReadAsciiText(object, text) : ReadUtf16Text(object, text))) return false;
    return CountBytes(object.offset, text.View().size());
  }

  bool ReadAsciiText(Object object, SharedBytes& text) {
    std::uint64_t size = 0;
    std::string_view bytes;
    if (!ReadCount(object, size) || !Bytes(object, size, bytes)) return false;
    if (states_[object.number] == State::New) {
      if (!IsPlainAscii(bytes)) return FailUnusualAscii(object, bytes);
      states_[object.number] = State::Known;
    }
    text = SharedBytes(buffer_, bytes);
    return true;
  }

  bool FailUnusualAscii(const Object& object, std::string_view bytes) {
    const bool isAscii = std::ranges::none_of(bytes, [](char byte) { return (byte & 0x80) != 0; });
    return isAscii ? FailUncarriable(object) : Fail(object.offset, "a string is not ASCII");
  }

  bool ReadUtf16Text(Object object, SharedBytes& text) {
    if (TakeKnownText(object, text)) return true;
    std::uint64_t units = 0;
    std::string_view bytes;
    if (!ReadCount(object, units)) return false;
    if (units > file_.size()) return Fail(object.offset, "an object is cut short");
    if (!Bytes(object, units * 2, bytes) || !CountText(object, bytes)) return false;
    const auto transcoded = TranscodeUtf16(bytes, ByteOrder::BigEndian);
    if (transcoded.invalidAt != NoPlace) return Fail(object.offset, "a string is not UTF-16");
    if (FindInvalidText(transcoded.text) != NoPlace) return FailUncarriable(object);
    text = decoded_.Keep(transcoded.text);
    knownTexts_.emplace(object.offset, text);
    return true;
  }

  bool TakeKnownText(const Object& object, SharedBytes& text) {
    const auto known = knownTexts_.find(object.offset);
    if (known == knownTexts_.end()) return false;
    text = known->second;
    return true;
  }

  bool FailUncarriable(const Object& object) {
    return Fail(object.offset, "a string holds a character that XML cannot carry");
  }

  bool ReadContainer(const Object& object, PropertyValue& value) {
    auto& state = states_[object.number];
    const bool isReachedAgain = state == State::Known;
    if (isReachedAgain) {
      const auto shared = finished_.find(object.number);
      if (shared != finished_.end()) return ReuseContainer(object, shared->second, value);
    }
    if (state == State::Open) return Fail(object.offset, "an object contains itself");
    if (nesting_ == MaximumNesting) return Fail(object.offset, NestedTooDeeply);
    const Tally before = tally_;
    const std::size_t deepestOutside = std::exchange(deepest_, ++nesting_);
    state = State::Open;
    const bool isArray = object.Kind() == ObjectKind::Array;
    if (!(isArray ? ReadArray(object, value) : ReadDictionary(object, value))) return false;
    state = State::Known;
    --nesting_;
    if (isReachedAgain) {
      const Tally inside = {tally_.values - before.values, tally_.longBytes - before.longBytes};
      finished_.emplace(object.number, FinishedContainer{value, inside, deepest_ - nesting_});
    }
    deepest_ = std::max(deepest_, deepestOutside);
    return true;
  }

  bool ReuseContainer(const Object& object, const FinishedContainer& container,
                      PropertyValue& value) {
    if (container.height > MaximumNesting - nesting_) return Fail(object.offset, NestedTooDeeply);
    if (!CountValues(object.offset, container.tally.values)) return false;
    if (!CountLongBytes(object.offset, container.tally.longBytes)) return false;
    deepest_ = std::max(deepest_, nesting_ + container.height);
    value = container.value;
    return true;
  }

  // Finds where the references of a container begin that holds `count` of them `perElement` times
  // over.
  bool ReadReferences(Object object, std::uint64_t perElement, std::uint64_t& count,
                      std::size_t& references) {
    if (!ReadCount(object, count)) return false;
    if (count > file_.size()) return Fail(object.offset, "an object is cut short");
    const std::uint64_t size = count * perElement * layout_.ReferenceWidth();
    std::string_view bytes;
    references = object.contents;
    return Bytes(object, size, bytes) && CountValues(object.offset, count);
  }

  std::uint64_t ReferenceAt(std::size_t references, std::uint64_t index) const {
    const std::size_t width = layout_.ReferenceWidth();
    return layout_.NumberAt(references + static_cast<std::size_t>(index) * width, width);
  }

  bool ReadArray(const Object& object, PropertyValue& value) {
    std::uint64_t count = 0;
    std::size_t references = 0;
    if (!ReadReferences(object, 1, count, references)) return false;
    Array array;
    array.reserve(static_cast<std::size_t>(count));
    for (std::uint64_t i = 0; i < count; ++i) {
      auto& element = array.emplace_back(Unread);
      if (!ReadValue(ReferenceAt(references, i), object.offset, element)) return false;
    }
    value = std::move(array);
    return true;
  }

  bool ReadDictionary(const Object& object, PropertyValue& value) {
    std::uint64_t count = 0;
    std::size_t references = 0;  // all the keys, then all the values
    if (!ReadReferences(object, 2, count, references)) return false;
    std::vector<DictionaryEntry> entries;
    entries.reserve(static_cast<std::size_t>(count));
    for (std::uint64_t i = 0; i < count; ++i) {
      const auto* key = ReadKey(ReferenceAt(references, i), object.offset);
      if (key == nullptr) return false;
      auto& entry = entries.emplace_back(*key, Unread);
      if (!ReadValue(ReferenceAt(references, count + i), object.offset, entry.value)) return false;
    }
    value = Dictionary(std::move(entries));
    return true;
  }

  // Null for a fault. Valid until the next key is read.
  const DictionaryKey* ReadKey(std::uint64_t number, std::size_t referrer) {
    auto& known = knownKeys_[number % std::size(knownKeys_)];
    const bool isKnown = known.key && known.number == number;
    const bool read = isKnown ? CountBytes(known.offset, known.key->View().size())
                              : ReadNewKey(number, referrer, known);
    if (!read) return nullptr;
    if (places_ != nullptr) places_->Key(known.key->Text(), known.offset);
    return &*known.key;
  }

  bool ReadNewKey(std::uint64_t number, std::size_t referrer, KnownKey& known) {
    Object object{};
    SharedBytes text;
    if (!Locate(number, referrer, object)) return false;
    if (object.Kind() != ObjectKind::AsciiString && object.Kind() != ObjectKind::Utf16String) {
      return Fail(object.offset, "a key is not a string");
    }
    if (!ReadText(object, text)) return false;
    known = {number, object.offset, DictionaryKey(text)};
    return true;
  }

  const SourceBuffer& buffer_;
  std::string_view file_;
  PlaceRecorder* places_;  // null: nobody wants to know; what a shared container holds is not told
  BinaryLayout layout_;
  ParseFault fault_;
  Tally tally_ = {.values = 1, .longBytes = 0};  // the top object is referred to by no other
  std::uint64_t textBytes_ = 0;
  std::size_t nesting_ = 0;
  std::size_t deepest_ = 0;    // the greatest nesting inside the container that is read, so far
  std::vector<State> states_;  // by object
  std::map<std::uint64_t, FinishedContainer> finished_;  // by object, those read twice
  DecodedBytes decoded_;
  std::array<KnownKey, 256> knownKeys_;  // by their numbers, those that were read last
  // UTF-16 strings that have been decoded, by their place: one that is shared often must not cost
  // its size each time. Ordered, as a file picks the places and could make hashes clash.
  std::map<std::size_t, SharedBytes> knownTexts_;
};

}  // namespace

ParseOutcome ParseBinaryPropertyList(const SourceBuffer& file, PlaceRecorder* places) {
  return BinaryPropertyListReader(file, places).Read();
}

}  // namespace fernwick
