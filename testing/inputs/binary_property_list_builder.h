#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::testing {

/// The low `width` bytes of `number`, the highest first. REQUIRES: at most eight.
std::string BigEndian(std::uint64_t number, std::size_t width);

/// Objects of a binary property list, each as its bytes are in the file. A reference is the index
/// of another object in the list that is passed to BinaryFile.
using References = std::vector<std::uint64_t>;

/// A marker that contains the count or, from 15 on, is followed by it as the shortest integer.
/// `kind` is its high four bits.
std::string CountedMarker(unsigned kind, std::uint64_t count);

/// An object of each kind, of an array or a dictionary with references of that many bytes.
std::string AsciiObject(std::string_view text);
std::string Utf16Object(const std::u16string& text);
std::string DataObject(std::string_view bytes);
std::string RealObject(double real);
std::string DateObject(double secondsSince2001);
std::string ArrayObject(const References& elements, std::size_t referenceWidth = 1);
std::string DictionaryObject(const References& keys, const References& values,
                             std::size_t referenceWidth = 1);

/// What the trailer says, for files where it is to be wrong or unusual.
struct BinaryShape {
  std::size_t offsetWidth = 2;
  std::size_t referenceWidth = 1;  // the objects' references are to be written in the same width
  std::uint64_t topObject = 0;
  std::optional<std::uint64_t> objectCount = {};
  std::optional<std::uint64_t> offsetTable = {};
  std::vector<std::uint64_t> furtherOffsets = {};  // more objects, by their offsets in the file
};

/// A file with `objects` one after the other, from byte 8 on.
std::string BinaryFile(const std::vector<std::string>& objects, const BinaryShape& shape = {});

}  // namespace fernwick::testing
