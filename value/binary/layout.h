#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "value/parse_fault.h"

namespace fernwick {

// The layout of a binary property list, all numbers big-endian:
//
//   "bplist00", the objects, the offset table, a trailer of 32 bytes
//
// The offset table has the offset of each object in the file, by object number. The trailer has,
// from its byte 6 on: the width of a table offset, the width of an object number inside an array
// or dictionary (a byte each), the count of objects, the number of the top object and the offset
// of the offset table (eight bytes each).
//
// An object begins with a marker byte: its kind in the high four bits, in the low four the count of
// bytes, units or elements, or CountFollows before a count of its own; of an integer and a real the
// base-2 logarithm of the width. Then, by kind:
//
//   Simple       nothing: the marker alone is null, false or true
//   Integer      1, 2 or 4 bytes, unsigned; 8 bytes, signed; 16 bytes, signed, from -2^63 to 2^64-1
//   Real         4 or 8 bytes, IEEE 754
//   Date         8 bytes, a real: the seconds since 2001-01-01T00:00:00Z
//   Data         the bytes
//   AsciiString  the characters
//   Utf16String  the units, of which the count is, two bytes each
//   Array        the numbers of its elements
//   Dictionary   the numbers of all keys, which are strings, then those of all values
//
// UIDs and sets are of other formats: the reader refuses them.

/// What begins with this is a binary property list, whatever its version.
inline constexpr std::string_view BinarySignature = "bplist0";

/// The header: the signature and the one version that is read and written.
inline constexpr std::string_view BinaryHeader = "bplist00";

/// The kinds of object, as a marker byte has them.
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

/// In bytes.
inline constexpr std::size_t TrailerSize = 32;

/// In the low four bits of a marker: the count follows, as an integer object.
inline constexpr std::uint8_t CountFollows = 0xF;

/// Whole marker bytes.
namespace BinaryMarker {
inline constexpr std::uint8_t Null = 0x00;
inline constexpr std::uint8_t False = 0x08;
inline constexpr std::uint8_t True = 0x09;
inline constexpr std::uint8_t WideInteger = 0x14;  // of 16 bytes
inline constexpr std::uint8_t Double = 0x23;
inline constexpr std::uint8_t Date = 0x33;
}  // namespace BinaryMarker

/// The table of contents of a file whose header and trailer have been checked against its size.
class BinaryLayout {
 public:
  /// Checks every field of the trailer, and views the file from then on. Returns false with a fault
  /// at the offending byte; nothing else may be called then.
  bool Read(std::string_view file, ParseFault& fault);

  std::uint64_t ObjectCount() const { return objectCount_; }
  std::uint64_t TopObject() const { return topObject_; }
  /// The bytes of an object number inside an array or dictionary, 1 to 8.
  std::size_t ReferenceWidth() const { return referenceWidth_; }

  /// Objects are below this offset.
  std::size_t EndOfObjects() const { return offsetTable_; }

  /// The unsigned big-endian number of `width` bytes, 1 to 8, at `offset`. REQUIRES: `offset` is
  /// before the trailer, whose 32 bytes follow every number, so that eight can be read at once.
  std::uint64_t NumberAt(std::size_t offset, std::size_t width) const;

  /// The offset of an object as it is in the table, not checked. REQUIRES: object is below
  /// ObjectCount().
  std::uint64_t OffsetOf(std::uint64_t object) const {
    return NumberAt(offsetTable_ + static_cast<std::size_t>(object) * offsetWidth_, offsetWidth_);
  }

 private:
  std::string_view file_;
  std::size_t offsetWidth_ = 0;
  std::size_t referenceWidth_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t topObject_ = 0;
  std::size_t offsetTable_ = 0;
};

/// The unsigned big-endian number that `bytes` spell. REQUIRES: at most eight bytes.
std::uint64_t BigEndianNumber(std::string_view bytes);

inline std::uint64_t BinaryLayout::NumberAt(std::size_t offset, std::size_t width) const {
  const char* bytes = file_.data() + offset;
  const auto byte = [&](unsigned i) {
    return std::uint64_t{static_cast<unsigned char>(bytes[i])} << (56 - 8 * i);
  };
  const std::uint64_t eight =  // one load, as the compiler sees
      byte(0) | byte(1) | byte(2) | byte(3) | byte(4) | byte(5) | byte(6) | byte(7);
  return eight >> (64 - 8 * width);
}

}  // namespace fernwick
