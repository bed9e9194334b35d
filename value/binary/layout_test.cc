#include "value/binary/layout.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"

namespace fernwick {
namespace {

using testing::BigEndian;
using testing::BinaryFile;
using testing::BinaryShape;
using testing::Truncated;
using testing::WithByte;

constexpr std::uint64_t MaxUnsigned = std::numeric_limits<std::uint64_t>::max();

const std::string True = "\x09";
const std::string False = "\x08";

// Two objects, in bytes 8 and 9; the offset table from byte 10, the trailer from byte 14 on.
std::string TwoObjects(const BinaryShape& shape = {}) {
  return BinaryFile({True, False}, shape);
}

TEST(BinaryLayout, NumbersAreBigEndian) {
  EXPECT_EQ(BigEndianNumber(""), 0u);
  EXPECT_EQ(BigEndianNumber("\x80"), 0x80u);
  EXPECT_EQ(BigEndianNumber("\x01\x02\x03"), 0x010203u);
  EXPECT_EQ(BigEndianNumber("\xFF\xFE\xFD\xFC\xFB\xFA\xF9\xF8"), 0xFFFEFDFCFBFAF9F8u);
}

TEST(BinaryLayout, ReadsNumbersOfEveryWidthAnywhereBeforeTheTrailer) {
  const auto file = BinaryFile({"\x81\x92\xA3\xB4\xC5\xD6\xE7\xF8"});
  BinaryLayout layout;
  ParseFault fault;
  ASSERT_TRUE(layout.Read(file, fault));
  for (std::size_t width = 1; width <= 8; ++width) {
    for (std::size_t at = 0; at < file.size() - 32; ++at) {
      EXPECT_EQ(layout.NumberAt(at, width), BigEndianNumber(file.substr(at, width)));
    }
  }
}

TEST(BinaryLayout, ReadsEveryWidthOfOffset) {
  for (std::size_t width = 1; width <= 8; ++width) {
    SCOPED_TRACE(width);
    const auto file = TwoObjects({.offsetWidth = width, .topObject = 1});
    BinaryLayout layout;
    ParseFault fault;
    ASSERT_TRUE(layout.Read(file, fault));
    EXPECT_EQ(layout.ObjectCount(), 2u);
    EXPECT_EQ(layout.TopObject(), 1u);
    EXPECT_EQ(layout.EndOfObjects(), 10u);
    EXPECT_EQ(layout.OffsetOf(0), 8u);
    EXPECT_EQ(layout.OffsetOf(1), 9u);
  }
}

TEST(BinaryLayout, ReadsEveryWidthOfReference) {
  for (std::size_t width = 1; width <= 8; ++width) {
    const auto file = TwoObjects({.referenceWidth = width});
    BinaryLayout layout;
    ParseFault fault;
    ASSERT_TRUE(layout.Read(file, fault)) << width;
    EXPECT_EQ(layout.ReferenceWidth(), width);
  }
}

TEST(BinaryLayout, OffsetsMayLieAnywhere) {
  const auto file = TwoObjects({.offsetWidth = 8, .furtherOffsets = {MaxUnsigned, 0}});
  BinaryLayout layout;
  ParseFault fault;
  ASSERT_TRUE(layout.Read(file, fault));
  EXPECT_EQ(layout.ObjectCount(), 4u);
  EXPECT_EQ(layout.OffsetOf(2), MaxUnsigned);
  EXPECT_EQ(layout.OffsetOf(3), 0u);
}

struct FaultRow {
  std::string file;
  std::size_t offset;
  std::string message;
};

// With one field of the trailer, or of the header, replaced.
std::string WithNumber(std::string file, std::size_t offset, std::uint64_t number) {
  return file.replace(offset, 8, BigEndian(number, 8));
}

TEST(BinaryLayout, RejectsATrailerThatDoesNotFitTheFile) {
  const auto file = TwoObjects();
  const std::string version = "the version is not \"00\"";
  const std::string offsetWidth = "the width of an offset is not 1 to 8";
  const std::string referenceWidth = "the width of a reference is not 1 to 8";
  const std::string count = "the file is too short for the offset table";
  const std::string top = "the top object does not exist";
  const std::string table = "the offset table is not between the header and the trailer";
  const FaultRow rows[] = {
      {"bplist0", 7, version},
      {WithByte(file, 7, '1'), 7, version},
      {WithByte(file, 7, '\0'), 7, version},
      {"bplist00", 8, "the file is cut short"},
      {Truncated(file, 39), 39, "the file is cut short"},
      {WithByte(file, 20, 0), 20, offsetWidth},
      {WithByte(file, 20, 9), 20, offsetWidth},
      {WithByte(file, 20, 255), 20, offsetWidth},
      {WithByte(file, 21, 0), 21, referenceWidth},
      {WithByte(file, 21, 9), 21, referenceWidth},
      {WithNumber(file, 22, 3), 22, count},
      {WithNumber(file, 22, MaxUnsigned), 22, count},
      {WithNumber(file, 22, std::uint64_t{1} << 63), 22, count},  // twice that is 0 in 64 bits
      {WithNumber(file, 22, 0), 30, top},
      {WithNumber(file, 30, 2), 30, top},
      {WithNumber(file, 30, MaxUnsigned), 30, top},
      {WithNumber(file, 38, 0), 38, table},
      {WithNumber(file, 38, 7), 38, table},
      {WithNumber(file, 38, 15), 38, table},
      {WithNumber(file, 38, (std::uint64_t{1} << 56) + 10), 38, table},
      {WithNumber(file, 38, MaxUnsigned), 38, table},
      {WithNumber(file, 38, 11), 22, count},
      {WithNumber(file, 38, 14), 22, count},
  };
  for (const auto& [bytes, offset, message] : rows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    BinaryLayout layout;
    ParseFault fault;
    EXPECT_FALSE(layout.Read(bytes, fault));
    EXPECT_EQ(fault.Offset(), offset);
    EXPECT_EQ(fault.Message(), message);
  }
}

}  // namespace
}  // namespace fernwick
