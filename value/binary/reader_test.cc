#include "value/binary/reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"
#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::ArrayObject;
using testing::AsciiObject;
using testing::BigEndian;
using testing::BinaryFile;
using testing::BinaryShape;
using testing::Bytes;
using testing::Copies;
using testing::CountedMarker;
using testing::DataObject;
using testing::DateObject;
using testing::DateOf;
using testing::Dict;
using testing::DictionaryObject;
using testing::ErrorOf;
using testing::ExpectAccepted;
using testing::ExpectRejected;
using testing::Kept;
using testing::List;
using testing::NestedArrays;
using testing::RealObject;
using testing::References;
using testing::Repeated;
using testing::Truncated;
using testing::Utf16Object;
using testing::WithByte;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

const std::string Null(1, '\x00');
const std::string False = "\x08";
const std::string True = "\x09";

Result<PropertyValue> Parse(std::string file) {
  auto& arena = testing::ValueArena();
  return ParseBinaryPropertyList(arena.Adopt(std::move(file)), arena);
}

// A file of one object, which begins at byte 8.
Result<PropertyValue> ParseObject(const std::string& object) {
  return Parse(BinaryFile({object}));
}

std::string IntegerObject(unsigned marker, std::initializer_list<std::uint64_t> eightByteParts) {
  std::string object = BigEndian(marker, 1);
  for (const auto part : eightByteParts) object += BigEndian(part, 8);
  return object;
}

References Same(std::size_t count, std::uint64_t object) {
  return References(count, object);  // NOLINT: in braces it would be two
}

TEST(BinaryPropertyList, AcceptsBooleans) {
  ExpectAccepted(ParseObject, {{False, false}, {True, true}});
}

TEST(BinaryPropertyList, IntegersUpToFourBytesAreUnsigned) {
  ExpectAccepted(ParseObject, {
                                  {{"\x10\x00", 2}, 0},
                                  {"\x10\x7F", 127},
                                  {"\x10\xFF", 255},
                                  {"\x11\xFF\xFE", 65534},
                                  {"\x12\xFF\xFF\xFF\xFF", 4294967295u},
                                  {{"\x12\x00\x00\x00\x05", 5}, 5},
                              });
}

TEST(BinaryPropertyList, IntegersOfEightBytesAreSigned) {
  ExpectAccepted(
      ParseObject,
      {
          {IntegerObject(0x13, {0}), 0},
          {IntegerObject(0x13, {0x7FFFFFFFFFFFFFFF}), std::numeric_limits<std::int64_t>::max()},
          {IntegerObject(0x13, {0x8000000000000000}), std::numeric_limits<std::int64_t>::min()},
          {IntegerObject(0x13, {0xFFFFFFFFFFFFFFFF}), -1},
      });
}

TEST(BinaryPropertyList, IntegersOfSixteenBytesReachFromMinus2To63To2To64Minus1) {
  constexpr std::uint64_t Ones = 0xFFFFFFFFFFFFFFFF;
  constexpr std::uint64_t SignBit = 0x8000000000000000;
  ExpectAccepted(ParseObject, {
                                  {IntegerObject(0x14, {0, 0}), 0},
                                  {IntegerObject(0x14, {0, SignBit}), SignBit},
                                  {IntegerObject(0x14, {0, Ones}), Ones},
                                  {IntegerObject(0x14, {Ones, Ones}), -1},
                                  {IntegerObject(0x14, {Ones, SignBit}),
                                   std::numeric_limits<std::int64_t>::min()},
                              });
  const std::string error = "byte 8: an integer lies outside -2^63 to 2^64-1";
  ExpectRejected(ParseObject, {
                                  {IntegerObject(0x14, {1, 0}), error},
                                  {IntegerObject(0x14, {Ones, SignBit - 1}), error},
                                  {IntegerObject(0x14, {Ones, 0}), error},
                                  {IntegerObject(0x14, {SignBit, 0}), error},
                                  {IntegerObject(0x14, {Ones - 1, Ones}), error},
                                  {IntegerObject(0x14, {SignBit - 1, Ones}), error},
                              });
}

TEST(BinaryPropertyList, AcceptsReals) {
  ExpectAccepted(ParseObject, {
                                  {{"\x22\x3F\x00\x00\x00", 5}, 0.5},
                                  {"\x22\x3D\xCC\xCC\xCD", double{0.1f}},
                                  {{"\x22\x7F\x80\x00\x00", 5}, Infinity},
                                  {RealObject(0), 0.0},
                                  {RealObject(-1.5), -1.5},
                                  {RealObject(41.050000000999994), 41.050000000999994},
                                  {RealObject(5e-324), 5e-324},
                                  {RealObject(-Infinity), -Infinity},
                              });
  EXPECT_TRUE(std::isnan(*ParseObject(RealObject(Nan))->AsReal()));
}

TEST(BinaryPropertyList, DatesAreCutToWholeSeconds) {
  ExpectAccepted(ParseObject, {
                                  {DateObject(0), DateOf("2001-01-01T00:00:00Z")},
                                  {DateObject(816825600.75), DateOf("2026-11-20T00:00:00Z")},
                                  {DateObject(-0.25), DateOf("2000-12-31T23:59:59Z")},
                                  {DateObject(-63113904000), DateOf("0001-01-01T00:00:00Z")},
                                  {DateObject(252423993599), DateOf("9999-12-31T23:59:59Z")},
                              });
}

TEST(BinaryPropertyList, RejectsOtherDates) {
  const std::string error = "byte 8: a date lies outside the years 1 to 9999";
  ExpectRejected(ParseObject, {
                                  {DateObject(-63113904001), error},
                                  {DateObject(252423993600), error},
                                  {DateObject(1e300), error},
                                  {DateObject(Infinity), error},
                                  {DateObject(-Infinity), error},
                                  {DateObject(Nan), error},
                              });
}

TEST(BinaryPropertyList, AcceptsData) {
  ExpectAccepted(ParseObject, {
                                  {DataObject(""), Bytes("")},
                                  {DataObject({"\0\xFF", 2}), Bytes({"\0\xFF", 2})},
                                  {DataObject(Repeated("x", 14)), Bytes(Repeated("x", 14))},
                                  {DataObject(Repeated("x", 15)), Bytes(Repeated("x", 15))},
                                  {DataObject(Repeated("x", 70000)), Bytes(Repeated("x", 70000))},
                              });
}

TEST(BinaryPropertyList, CountMayBeAnIntegerOfAnyWidthUpToEight) {
  ExpectAccepted(ParseObject, {
                                  {"\x4F\x10\x01x", Bytes("x")},
                                  {{"\x4F\x11\x00\x01x", 5}, Bytes("x")},
                                  {{"\x4F\x12\x00\x00\x00\x01x", 7}, Bytes("x")},
                                  {{"\x4F\x13\x00\x00\x00\x00\x00\x00\x00\x01x", 11}, Bytes("x")},
                                  {{"\x4F\x10\x00", 3}, Bytes("")},
                              });
}

TEST(BinaryPropertyList, AcceptsStrings) {
  ExpectAccepted(ParseObject,
                 {
                     {AsciiObject(""), ""},
                     {AsciiObject("a\tb\r\n\x7F"), "a\tb\r\n\x7F"},
                     {AsciiObject(Repeated("x", 14)), Kept(Repeated("x", 14))},
                     {AsciiObject(Repeated("x", 15)), Kept(Repeated("x", 15))},
                     {AsciiObject(Repeated("x", 64)), Kept(Repeated("x", 64))},
                     {AsciiObject(Repeated("x", 65)), Kept(Repeated("x", 65))},
                     {Utf16Object(u""), ""},
                     {Utf16Object(u"ab"), "ab"},
                     {Utf16Object(u"\u00E4\u20AC\U0001F600\uFFFD"),
                      "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD"},
                     {Utf16Object(std::u16string(300, u'\u00E4')), Kept(Repeated("\xC3\xA4", 300))},
                 });
}

TEST(BinaryPropertyList, RejectsStringsThatAreNotText) {
  const std::string notAscii = "byte 8: a string is not ASCII";
  const std::string notUtf16 = "byte 8: a string is not UTF-16";
  const std::string notXmlCharacter = "byte 8: a string contains a character that XML cannot carry";
  ExpectRejected(ParseObject, {
                                  {AsciiObject("\x80"), notAscii},
                                  {AsciiObject("\xC3\xA4"), notAscii},
                                  {AsciiObject(Repeated("x", 99) + "\xFF"), notAscii},
                                  {AsciiObject({"a\0", 2}), notXmlCharacter},
                                  {AsciiObject("\x1B"), notXmlCharacter},
                                  {AsciiObject(Repeated("x", 99) + "\x01"), notXmlCharacter},
                                  {Utf16Object({0xD83D}), notUtf16},
                                  {Utf16Object({0xDE00}), notUtf16},
                                  {Utf16Object({u'a', 0xDE00, 0xD83D, u'b'}), notUtf16},
                                  {Utf16Object({0xD83D, u'a'}), notUtf16},
                                  {Utf16Object({0xFFFE}), notXmlCharacter},
                                  {Utf16Object({0xFFFF}), notXmlCharacter},
                                  {Utf16Object({u'\0'}), notXmlCharacter},
                                  {Utf16Object({u'a', 0x0B}), notXmlCharacter},
                              });
}

TEST(BinaryPropertyList, RejectsKindsThatAreNotValues) {
  const std::string unknown = "byte 8: an unknown kind of object";
  ExpectRejected(ParseObject, {
                                  {Null, "byte 8: null is no property-list value"},
                                  {{"\x80\x01", 2}, "byte 8: a UID is no property-list value"},
                                  {"\x8F", "byte 8: a UID is no property-list value"},
                                  {"\xC0", "byte 8: a set is no property-list value"},
                                  {{"\xC1\x00", 2}, "byte 8: a set is no property-list value"},
                                  {"\x01", unknown},
                                  {"\x0F", unknown},
                                  {"\x15" + std::string(32, '\0'), unknown},
                                  {"\x1F" + std::string(32, '\0'), unknown},
                                  {"\x20" + std::string(8, '\0'), unknown},
                                  {"\x21" + std::string(8, '\0'), unknown},
                                  {"\x24" + std::string(16, '\0'), unknown},
                                  {"\x30" + std::string(8, '\0'), unknown},
                                  {"\x32" + std::string(8, '\0'), unknown},
                                  {"\x34" + std::string(8, '\0'), unknown},
                                  {"\x70", unknown},
                                  {"\x90", unknown},
                                  {"\xB0", unknown},
                                  {"\xE0", unknown},
                                  {"\xF0", unknown},
                              });
}

TEST(BinaryPropertyList, EveryMarkerIsAValueOrRefusedWithoutHarm) {
  for (unsigned marker = 0; marker < 256; ++marker) {
    const auto value = ParseObject(BigEndian(marker, 1) + std::string(64, '\0'));
    EXPECT_NE(value ? "a value" : value.Error().message, "") << marker;
  }
}

TEST(BinaryPropertyList, RejectsObjectsThatAreCutShort) {
  const std::string cut = "byte 8: an object is cut short";
  ExpectRejected(ParseObject, {
                                  {"\x10", cut},
                                  {"\x11x", cut},
                                  {"\x12xxx", cut},
                                  {"\x13xxxxxxx", cut},
                                  {"\x14xxxxxxxxxxxxxxx", cut},
                                  {"\x22xxx", cut},
                                  {"\x23xxxxxxx", cut},
                                  {"\x33xxxxxxx", cut},
                                  {"\x42x", cut},
                                  {"\x52x", cut},
                                  {"\x62xxx", cut},
                                  {{"\xA2\x00", 2}, cut},
                                  {{"\xD1\x00", 2}, cut},
                                  {"\x4F", cut},
                                  {"\x4F\x10", cut},
                                  {"\x4F\x11x", cut},
                                  {"\x4F\x13xxxxxxx", cut},
                                  {"\x4F\x10\x02x", cut},
                              });
}

TEST(BinaryPropertyList, RejectsCountsBeyondTheFile) {
  const std::string cut = "byte 8: an object is cut short";
  std::vector<testing::RejectedRow> rows;
  for (const unsigned kind : {0x4u, 0x5u, 0x6u, 0xAu, 0xDu}) {
    for (const std::uint64_t count :
         {0x10000ull, 0x7FFFFFFFull, 0x100000000ull, 0x2000000000000000ull, 0x4000000000000001ull,
          0x7FFFFFFFFFFFFFFFull, 0x8000000000000001ull, 0xFFFFFFFFFFFFFFFFull}) {
      rows.push_back({CountedMarker(kind, count) + "xx", cut});
    }
  }
  ExpectRejected(ParseObject, rows);
}

TEST(BinaryPropertyList, RejectsCountsThatAreNotIntegersOfUpToEightBytes) {
  const std::string error = "byte 9: a count is not an integer";
  ExpectRejected(ParseObject, {
                                  {"\x4F\x22xxxxxx", error},
                                  {"\x4F\x22", error},
                                  {{"\x5F\x09\x00", 3}, error},
                                  {"\x6F\x51x", error},
                                  {"\xAF\x14" + std::string(16, '\0'), error},
                                  {"\xDF\x1F" + std::string(64, '\0'), error},
                              });
}

// So many objects that any byte read as a reference would name one.
TEST(BinaryPropertyList, RejectsAContainerWhoseCountIsNotAnIntegerAmongManyObjects) {
  for (const std::string container : {"\xAF\x22", "\xDF\x22"}) {
    std::vector<std::string> objects(250, True);
    objects.push_back(container);
    EXPECT_EQ(ErrorOf(Parse(BinaryFile(objects, {.topObject = 250}))),
              "byte 259: a count is not an integer");
  }
}

TEST(BinaryPropertyList, RejectsAContainerWhoseCountIsNotAnInteger) {
  for (const std::string container : {"\xAF\x22", "\xDF\x22"}) {
    EXPECT_EQ(ErrorOf(Parse(BinaryFile({True, container}, {.topObject = 1}))),
              "byte 10: a count is not an integer");
  }
}

TEST(BinaryPropertyList, AcceptsArrays) {
  ExpectAccepted(
      Parse,
      {
          {BinaryFile({ArrayObject({})}), Array()},
          {BinaryFile({ArrayObject({1, 2}), True, AsciiObject("a")}), List({true, "a"})},
          {BinaryFile({ArrayObject({2, 1, 2}), True, AsciiObject("a")}), List({"a", true, "a"})},
          {BinaryFile({ArrayObject(Same(20, 1)), True}), Copies(20, true)},
          {BinaryFile({ArrayObject({1, 1}), ArrayObject({2}), True}),
           List({List({true}), List({true})})},
      });
}

TEST(BinaryPropertyList, AcceptsDictionaries) {
  const auto a = AsciiObject("a");
  ExpectAccepted(
      Parse,
      {
          {BinaryFile({DictionaryObject({}, {})}), Dictionary()},
          {BinaryFile({DictionaryObject({2, 1}, {3, 4}), a, AsciiObject("b"), True, False}),
           Dict({{"b", true}, {"a", false}})},
          {BinaryFile({DictionaryObject({1}, {1}), a}), Dict({{"a", "a"}})},
          {BinaryFile({DictionaryObject({1}, {2}), Utf16Object(u"\u00E4"), True}),
           Dict({{"\xC3\xA4", true}})},
          // A key that occurs twice keeps its first position and its last value.
          {BinaryFile({DictionaryObject({1, 2, 1}, {3, 3, 4}), a, AsciiObject("b"), True, False}),
           Dict({{"a", false}, {"b", true}})},
          {BinaryFile({DictionaryObject({1, 2}, {3, 4}), a, Utf16Object(u"a"), True, False}),
           Dict({{"a", false}})},
      });
}

TEST(BinaryPropertyList, RejectsKeysThatAreNotStrings) {
  const auto dictionary = DictionaryObject({1}, {2});
  const std::string error = "byte 11: a key is not a string";
  ExpectRejected(
      Parse,
      {
          {BinaryFile({dictionary, True, True}), error},
          {BinaryFile({dictionary, "\x10\x01", True}), error},
          {BinaryFile({dictionary, DataObject("a"), True}), error},
          {BinaryFile({dictionary, ArrayObject({}), True}), error},
          {BinaryFile({dictionary, Null, True}), error},
          {BinaryFile({DictionaryObject({0}, {1}), True}), "byte 8: a key is not a string"},
          {BinaryFile({dictionary, AsciiObject("\x80"), True}), "byte 11: a string is not ASCII"},
          {BinaryFile({dictionary, Utf16Object({0xD800}), True}),
           "byte 11: a string is not UTF-16"},
          {BinaryFile({dictionary, AsciiObject("\x01"), True}),
           "byte 11: a string contains a character that XML cannot carry"},
      });
}

TEST(BinaryPropertyList, EveryWidthOfOffsetAndReferenceReadsTheSame) {
  const PropertyValue expected = Dict({{"a", List({true, "a"})}});
  for (std::size_t offsetWidth = 1; offsetWidth <= 8; ++offsetWidth) {
    for (std::size_t referenceWidth = 1; referenceWidth <= 8; ++referenceWidth) {
      const auto file = BinaryFile(
          {True, AsciiObject("a"), ArrayObject({0, 1}, referenceWidth),
           DictionaryObject({1}, {2}, referenceWidth)},
          {.offsetWidth = offsetWidth, .referenceWidth = referenceWidth, .topObject = 3});
      SCOPED_TRACE(std::to_string(offsetWidth) + ' ' + std::to_string(referenceWidth));
      ExpectAccepted(Parse, {{file, expected}});
    }
  }
}

TEST(BinaryPropertyList, MoreThan256ObjectsNeedWiderReferences) {
  std::vector<std::string> objects;
  References elements;
  std::vector<PropertyValue> expected;
  for (unsigned i = 1; i <= 1000; ++i) {
    elements.push_back(i);
    expected.emplace_back(i);
  }
  objects.push_back(ArrayObject(elements, 2));
  for (unsigned i = 1; i <= 1000; ++i) objects.push_back('\x11' + BigEndian(i, 2));
  ExpectAccepted(Parse, {{BinaryFile(objects, {.referenceWidth = 2}), List(expected)}});
}

TEST(BinaryPropertyList, RejectsDanglingReferences) {
  const std::string noObject = "a reference to no object";
  const std::string outside = "an object is not between the header and the offset table";
  ExpectRejected(
      Parse,
      {
          {BinaryFile({ArrayObject({1})}), "byte 8: " + noObject},
          {BinaryFile({ArrayObject({1}), ArrayObject({255})}), "byte 10: " + noObject},
          {BinaryFile({ArrayObject({0xFFFFFFFFFFFFFFFF}, 8)}, {.referenceWidth = 8}),
           "byte 8: " + noObject},
          {BinaryFile({DictionaryObject({1}, {1})}), "byte 8: " + noObject},
          {BinaryFile({DictionaryObject({2}, {1}), True}), "byte 8: " + noObject},
          {BinaryFile({DictionaryObject({1}, {2}), AsciiObject("a")}), "byte 8: " + noObject},
          {BinaryFile({ArrayObject({1})}, {.furtherOffsets = {0}}), "byte 8: " + outside},
          {BinaryFile({ArrayObject({1})}, {.furtherOffsets = {7}}), "byte 8: " + outside},
          {BinaryFile({ArrayObject({1})}, {.furtherOffsets = {10}}), "byte 8: " + outside},
          {BinaryFile({ArrayObject({1})}, {.furtherOffsets = {1000}}), "byte 8: " + outside},
          {BinaryFile({ArrayObject({1})},
                      {.offsetWidth = 8, .furtherOffsets = {0xFFFFFFFFFFFFFFFF}}),
           "byte 8: " + outside},
          {BinaryFile({True}, {.topObject = 1, .furtherOffsets = {9}}), "byte 29: " + outside},
      });
}

TEST(BinaryPropertyList, RejectsATrailerThatDoesNotFitTheFile) {
  ExpectRejected(
      Parse, {
                 {"bplist00", "byte 8: the file is cut short"},
                 {"bplist01" + BinaryFile({True}).substr(8), "byte 7: the version is not \"00\""},
                 {BinaryFile({True}, {.topObject = 1}), "byte 27: the top object does not exist"},
                 {BinaryFile({True}, {.objectCount = 2}),
                  "byte 19: the file is too short for the offset table"},
                 {BinaryFile({True}, {.offsetTable = 12}),
                  "byte 35: the offset table is not between the header and the trailer"},
                 {BinaryFile({}), "byte 24: the top object does not exist"},
             });
}

TEST(BinaryPropertyList, RejectsObjectsThatContainThemselves) {
  const std::string itself = "an object contains itself";
  const auto key = AsciiObject("a");
  ExpectRejected(
      Parse,
      {
          {BinaryFile({ArrayObject({0})}), "byte 8: " + itself},
          {BinaryFile({ArrayObject({1}), ArrayObject({0})}), "byte 8: " + itself},
          {BinaryFile({ArrayObject({1}), ArrayObject({1})}), "byte 10: " + itself},
          {BinaryFile({DictionaryObject({1}, {0}), key}), "byte 8: " + itself},
          {BinaryFile({ArrayObject({1}), DictionaryObject({2}, {0}), key}), "byte 8: " + itself},
          // Contains itself after an element that does not.
          {BinaryFile({ArrayObject({1, 1, 0}), ArrayObject({})}), "byte 8: " + itself},
          // The same bytes under two numbers.
          {BinaryFile({ArrayObject({1})}, {.furtherOffsets = {8}}), "byte 8: " + itself},
      });
}

TEST(BinaryPropertyList, AcceptsNestingUpTo512) {
  std::vector<std::string> objects;
  for (std::uint64_t i = 1; i <= 512; ++i) objects.push_back(ArrayObject({i}, 2));
  objects.push_back(True);
  ExpectAccepted(Parse, {{BinaryFile(objects, {.referenceWidth = 2}), NestedArrays(512, true)}});
}

TEST(BinaryPropertyList, RejectsDeeperNesting) {
  const std::string error = "more than 512 arrays and dictionaries are nested in each other";
  std::vector<std::string> arrays;
  std::vector<std::string> dictionaries;
  for (std::uint64_t i = 1; i <= 513; ++i) {
    arrays.push_back(ArrayObject({i}, 2));
    dictionaries.push_back(DictionaryObject({513}, {i}, 2));
  }
  arrays.push_back(True);
  dictionaries.push_back(AsciiObject("a"));
  ExpectRejected(Parse,
                 {
                     {BinaryFile(arrays, {.referenceWidth = 2}), "byte 1544: " + error},
                     {BinaryFile(dictionaries, {.referenceWidth = 2}), "byte 2568: " + error},
                 });
}

// The file of these objects and of as many unused bytes as make it `size` bytes long.
std::string FileOfSize(std::size_t size, std::vector<std::string> objects,
                       const BinaryShape& shape) {
  objects.emplace_back();
  objects.back().resize(size - BinaryFile(objects, shape).size());
  return BinaryFile(objects, shape);
}

constexpr std::size_t SharedValues = std::size_t{1} << 16;
constexpr std::size_t SharedBytes = std::size_t{1} << 26;

const std::string TooManyValues = "more values than the size of the file allows";
const std::string TooManyBytes =
    "more bytes of keys, strings and data than the size of the file allows";

TEST(BinaryPropertyList, ValuesReachedMayExceedTheSizeOfTheFileBy2To16) {
  // An array of 400 references to one array of 200 booleans.
  constexpr std::size_t Reached = 1 + 400 + 400 * 200;
  const std::vector<std::string> objects = {ArrayObject(Same(400, 1)), ArrayObject(Same(200, 2)),
                                            True};
  const auto file = [&](std::size_t size) { return FileOfSize(size, objects, {}); };
  ExpectAccepted(Parse, {{file(Reached - SharedValues), Copies(400, Copies(200, true))}});
  ExpectRejected(Parse, {{file(Reached - SharedValues - 1), "byte 412: " + TooManyValues}});
}

TEST(BinaryPropertyList, ValuesOfSharedDictionariesCountEachTimeAndTheirKeysNever) {
  constexpr std::size_t Reached = 1 + 400 + 400 * 200;
  const std::vector<std::string> objects = {DictionaryObject(Same(400, 3), Same(400, 1)),
                                            DictionaryObject(Same(200, 3), Same(200, 2)), True,
                                            AsciiObject("a")};
  const auto file = [&](std::size_t size) { return FileOfSize(size, objects, {}); };
  ExpectAccepted(Parse, {{file(Reached - SharedValues), Dict({{"a", Dict({{"a", true}})}})}});
  ExpectRejected(Parse, {{file(Reached - SharedValues - 1), "byte 812: " + TooManyValues}});
}

TEST(BinaryPropertyList, FileMayReachAValueForEachOfItsBytes) {
  const auto array = ArrayObject(Same(100000, 1));
  ExpectAccepted(Parse, {{BinaryFile({array, True}, {.offsetWidth = 4}), Copies(100000, true)}});
}

// `levels` arrays or dictionaries, the first `dictionaries` of them dictionaries, each with `width`
// references to the next one, the last one to a boolean.
std::string FanOut(std::uint64_t levels, std::size_t width, std::uint64_t dictionaries) {
  std::vector<std::string> objects;
  for (std::uint64_t next = 1; next <= levels; ++next) {
    const auto references = Same(width, next);
    objects.push_back(next <= dictionaries ? DictionaryObject(Same(width, levels + 1), references)
                                           : ArrayObject(references));
  }
  objects.push_back(True);
  objects.push_back(AsciiObject("a"));
  return BinaryFile(objects);
}

TEST(BinaryPropertyList, RejectsWhatWouldMultiplyAtEveryLevel) {
  ExpectRejected(Parse, {
                            {FanOut(50, 200, 0), "byte 9955: " + TooManyValues},
                            {FanOut(50, 200, 40), "byte 17955: " + TooManyValues},
                            {FanOut(200, 2, 0), "byte 605: " + TooManyValues},
                            {FanOut(200, 2, 200), "byte 998: " + TooManyValues},
                        });
}

TEST(BinaryPropertyList, ArraysThatDoubleAreReadAsFarAsTheyAreAllowed) {
  // 2^16 - 1 values in 15 levels, twice as many and one in 16.
  PropertyValue expected = true;
  for (int level = 0; level < 15; ++level) expected = List({expected, expected});
  ExpectAccepted(Parse, {{FanOut(15, 2, 0), expected}});
  ExpectRejected(Parse, {{FanOut(16, 2, 0), "byte 53: " + TooManyValues}});
}

// An array of `count` further arrays, each of which begins four bytes after the one before, and
// whose 1000 references of one byte are therefore the same bytes as those of the others.
std::string OverlappingArrays(std::uint64_t count) {
  // As a marker and its count it is an array of 1000; as references it is these four objects.
  const auto arrays = Repeated("\xAF\x11\x03\xE8", count + 250);
  constexpr std::uint64_t Boolean = 8;
  std::vector<std::uint64_t> offsets(256, Boolean);
  References elements;
  for (std::uint64_t number = 1; elements.size() < count; ++number) {
    if (number == 0xAF || number == 0x11 || number == 0x03 || number == 0xE8) continue;
    offsets[number] = Boolean + 1 + 4 * elements.size();
    elements.push_back(number);
  }
  offsets[0] = Boolean + 1 + arrays.size();
  std::string table;
  for (const auto offset : offsets) table += BigEndian(offset, 2);
  const auto objects = True + arrays + ArrayObject(elements);
  return "bplist00" + objects + table + std::string(6, '\0') + "\x02\x01" + BigEndian(256, 8) +
         BigEndian(0, 8) + BigEndian(8 + objects.size(), 8);
}

TEST(BinaryPropertyList, ArraysThatShareTheirBytesCountEach) {
  ExpectAccepted(Parse, {{OverlappingArrays(60), Copies(60, Copies(1000, true))}});
  // The file has 2556 bytes: 1 + 200 + 67 * 1000 values are reached before the 68th array.
  ExpectRejected(Parse, {{OverlappingArrays(200), "byte 277: " + TooManyValues}});
}

TEST(BinaryPropertyList, KeysThatShareTheirBytesAreRead) {
  // Every byte of the text begins a string of 14 characters, all of them equal.
  const auto text = Repeated("\x5E", 114);
  BinaryShape shape;
  References keys;
  for (std::uint64_t i = 0; i < 100; ++i) {
    keys.push_back(3 + i);
    shape.furtherOffsets.push_back(8 + 3 + 200 + i);
  }
  const auto dictionary = DictionaryObject(keys, Same(100, 2));
  const auto key = Repeated("\x5E", 14);
  ExpectAccepted(Parse, {{BinaryFile({dictionary, text, True}, shape), Dict({{key, true}})}});
}

// 2^20 bytes in a file.
const std::string& Megabyte() {
  static const std::string bytes = Repeated("k", 1 << 20);
  return bytes;
}

struct SharedBytesRow {
  std::string object;
  std::string container;
  std::string error;
};

TEST(BinaryPropertyList, BytesReachedMayExceedTheSizeOfTheFileBy2To26) {
  // Each is reached 66 times, as a value or a key. The size of a string in UTF-8 does not count.
  const auto utf16 = Utf16Object(std::u16string(1 << 19, u'\u20AC'));
  const auto array = ArrayObject(Same(66, 1));
  const auto dictionary = DictionaryObject(Same(66, 1), Same(66, 2));
  const auto keysAndValues = DictionaryObject(Same(33, 1), Same(33, 1));
  constexpr std::size_t Reached = 66 << 20;
  const SharedBytesRow rows[] = {
      {AsciiObject(Megabyte()), array, "byte 77: "},
      {DataObject(Megabyte()), array, "byte 77: "},
      {utf16, array, "byte 77: "},
      {AsciiObject(Megabyte()), dictionary, "byte 143: "},
      {utf16, dictionary, "byte 143: "},
      {AsciiObject(Megabyte()), keysAndValues, "byte 77: "},
  };
  for (const auto& [object, container, error] : rows) {
    SCOPED_TRACE(testing::TraceOf(container));
    const std::vector<std::string> objects = {container, object, True};
    const auto file = [&](std::size_t size) {
      return FileOfSize(size, objects, {.offsetWidth = 4});
    };
    EXPECT_EQ(ErrorOf(Parse(file(Reached - SharedBytes))), "");
    ExpectRejected(Parse, {{file(Reached - SharedBytes - 1), error + TooManyBytes}});
  }
}

TEST(BinaryPropertyList, BytesOfSharedContainersCountEachTimeTheyAreReached) {
  const std::vector<std::string> objects = {ArrayObject(Same(11, 1)), ArrayObject(Same(6, 2)),
                                            DataObject(Megabyte())};
  const auto file = [&](std::size_t size) { return FileOfSize(size, objects, {.offsetWidth = 4}); };
  constexpr std::size_t Reached = 66 << 20;
  EXPECT_EQ(ErrorOf(Parse(file(Reached - SharedBytes))), "");
  ExpectRejected(Parse, {{file(Reached - SharedBytes - 1), "byte 27: " + TooManyBytes}});
}

TEST(BinaryPropertyList, StringThatIsSharedIsNotCopied) {
  const auto value =
      Parse(BinaryFile({ArrayObject(Same(60, 1)), AsciiObject(Megabyte())}, {.offsetWidth = 4}));
  ASSERT_EQ(ErrorOf(value), "");
  const Array array = *value->AsArray();
  EXPECT_EQ(array[0].AsString(), Megabyte());
  EXPECT_EQ(array[0].AsString()->data(), array[59].AsString()->data());
}

// Two dictionaries with the same keys in either order.
TEST(BinaryPropertyList, KeysOfManyDictionariesAreDistinguished) {
  constexpr std::size_t KeyCount = 600;
  std::vector<std::string> objects = {"", "", "", True};
  References keys;
  std::vector<DictionaryEntry> expected;
  for (std::size_t i = 0; i < KeyCount; ++i) {
    keys.push_back(objects.size());
    objects.push_back(AsciiObject(std::to_string(i)));
    expected.push_back({Kept(std::to_string(i)), true});
  }
  const std::vector<DictionaryEntry> expectedReversed(expected.rbegin(), expected.rend());
  const References reversed(keys.rbegin(), keys.rend());
  objects[0] = ArrayObject({1, 2}, 2);
  objects[1] = DictionaryObject(keys, Same(KeyCount, 3), 2);
  objects[2] = DictionaryObject(reversed, Same(KeyCount, 3), 2);
  ExpectAccepted(Parse, {{BinaryFile(objects, {.offsetWidth = 4, .referenceWidth = 2}),
                          List({Dictionary(expected), Dictionary(expectedReversed)})}});
}

TEST(BinaryPropertyList, ContainerThatIsReachedOftenReadsTheSameEachTime) {
  ExpectAccepted(Parse,
                 {{BinaryFile({ArrayObject({1, 1, 1, 1}), ArrayObject({2, 2, 2}), ArrayObject({})}),
                   Copies(4, Copies(3, Array()))}});
}

// An array of a pair of nested arrays twice and, once more, that pair inside `depth` further
// arrays: 1 + depth + 2 are nested.
std::string SharedPairBelow(std::uint64_t depth) {
  std::vector<std::string> objects = {ArrayObject({1, 1, 3}, 2), ArrayObject({2}, 2),
                                      ArrayObject({}, 2)};
  for (std::uint64_t i = 1; i <= depth; ++i) {
    objects.push_back(ArrayObject({i == depth ? 1 : i + 3}, 2));
  }
  return BinaryFile(objects, {.referenceWidth = 2});
}

TEST(BinaryPropertyList, SharedContainerIsNestedWhereverItIsReached) {
  EXPECT_EQ(ErrorOf(Parse(SharedPairBelow(509))), "");
  ExpectRejected(Parse,
                 {{SharedPairBelow(510),
                   "byte 18: more than 512 arrays and dictionaries are nested in each other"}});
}
TEST(BinaryPropertyList, SharedUtf16StringIsDecodedOnce) {
  const auto value =
      Parse(BinaryFile({ArrayObject({1, 1, 2}), Utf16Object(u"\u00E4")}, {.furtherOffsets = {12}}));
  ASSERT_EQ(ErrorOf(value), "");
  const Array array = *value->AsArray();
  EXPECT_EQ(array[0].AsString(), "\xC3\xA4");
  EXPECT_EQ(array[0].AsString()->data(), array[1].AsString()->data());
  EXPECT_EQ(array[0].AsString()->data(), array[2].AsString()->data());
}

TEST(BinaryPropertyList, RejectsOverlappingStringsThatDecodeToMoreTextThanTheFile) {
  // Every four bytes begin another string of 1000 units, which are U+6F11 and U+03E8 by turns.
  const auto strings = Repeated("\x6F\x11\x03\xE8", 1000);
  constexpr std::uint64_t Start = 8 + 3 + 2 * 100;  // after the header and the array
  BinaryShape shape{.referenceWidth = 2, .topObject = 2};
  References elements;
  for (std::uint64_t i = 0; i < 100; ++i) {
    elements.push_back(2 + i);
    shape.furtherOffsets.push_back(Start + 4 * i);
  }
  const std::vector<std::string> objects = {ArrayObject(elements, 2), strings};
  const auto decoded = Repeated("\xE6\xBC\x91\xCF\xA8", 500);
  ExpectAccepted(Parse, {{BinaryFile(objects, shape), decoded}});
  shape.topObject = 0;
  ExpectRejected(Parse, {{BinaryFile(objects, shape), "byte 219: strings overlap"}});
}

// An array of fewer than 15 strings of 2000 bytes each, every four bytes beginning another, in a
// file of `size` bytes.
std::string OverlappingStrings(std::uint64_t count, std::size_t size) {
  const auto strings = Repeated("\x6F\x11\x03\xE8", 1000);
  const std::uint64_t start = 8 + 1 + 2 * count;  // after the header and the array
  BinaryShape shape{.referenceWidth = 2};
  References elements;
  for (std::uint64_t i = 0; i < count; ++i) {
    elements.push_back(3 + i);
    shape.furtherOffsets.push_back(start + 4 * i);
  }
  const auto array = ArrayObject(elements, 2);
  return FileOfSize(size, {array, strings}, shape);
}

TEST(BinaryPropertyList, OverlappingStringsMayDecodeToAsMuchTextAsTheFileIsLong) {
  EXPECT_EQ(ErrorOf(Parse(OverlappingStrings(3, 6000))), "");
  EXPECT_EQ(ErrorOf(Parse(OverlappingStrings(3, 5999))), "byte 23: strings overlap");
  EXPECT_EQ(ErrorOf(Parse(OverlappingStrings(4, 6000))), "byte 29: strings overlap");
}

const std::string& SampleFile() {
  static const std::string file = BinaryFile({
      DictionaryObject({1, 2, 3}, {4, 5, 6}),
      AsciiObject("numbers"),
      Utf16Object(u"\u00E4\U0001F600"),
      AsciiObject(Repeated("a long key ", 8)),
      ArrayObject({7, 8, 9, 10, 11}),
      DataObject("bytes"),
      DictionaryObject({1}, {4}),
      True,
      "\x11\x01\x02",
      IntegerObject(0x14, {0, 5}),
      RealObject(0.5),
      DateObject(0),
  });
  return file;
}

TEST(BinaryPropertyList, TruncationAtAnyLengthIsRefused) {
  const auto& file = SampleFile();
  ASSERT_EQ(ErrorOf(Parse(file)), "");
  for (std::size_t size = 8; size < file.size(); ++size) {
    EXPECT_NE(ErrorOf(Parse(Truncated(file, size))), "") << size;
  }
}

TEST(BinaryPropertyList, AnyByteMayBeAnyOtherWithoutHarm) {
  const auto& file = SampleFile();
  for (std::size_t at = 0; at < file.size(); ++at) {
    for (unsigned byte = 0; byte < 256; ++byte) {
      const auto changed = WithByte(file, at, static_cast<unsigned char>(byte));
      Arena arena;
      const auto value = ParseBinaryPropertyList(changed, arena);
      ASSERT_NE(value ? "a value" : value.Error().message, "") << at << ' ' << byte;
    }
  }
}

TEST(BinaryPropertyList, AsciiStringsAndDataViewTheFile) {
  const auto file = BinaryFile({ArrayObject({1, 2}), AsciiObject("text"), DataObject("data")});
  Arena arena;
  const auto value = ParseBinaryPropertyList(file, arena);
  ASSERT_EQ(ErrorOf(value), "");
  const Array array = *value->AsArray();
  EXPECT_EQ(array[0].AsString()->data(), file.data() + 12);
  EXPECT_EQ(array[1].AsData()->data(), file.data() + 17);
}

}  // namespace
}  // namespace fernwick
