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

/// Objects of a binary property list, each as its bytes stand in the file. A reference is the place
/// of another object in the list that BinaryFile is given.
using References = std::vector<std::uint64_t>;

/// A marker with the count in it, or from 15 on behind it as an integer as short as may be. `kind`
/// is its high four bits.
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

/// What the trailer says where it is to say something other than the truth or the usual.
struct BinaryShape {
  std::size_t offsetWidth = 2;
  std::size_t referenceWidth = 1;  // the objects' references are to be written in the same width
  std::uint64_t topObject = 0;
  std::optional<std::uint64_t> objectCount = {};
  std::optional<std::uint64_t> offsetTable = {};
  std::vector<std::uint64_t> furtherOffsets = {};  // objects more, by their places in the file
};

/// A file that holds `objects`, one behind the other, from byte 8 on.
std::string BinaryFile(const std::vector<std::string>& objects, const BinaryShape& shape = {});

}  // namespace fernwick::testing
