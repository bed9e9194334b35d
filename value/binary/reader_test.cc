#include "value/binary/reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
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
using testing::CountedMarker;
using testing::DataObject;
using testing::DateObject;
using testing::DateOf;
using testing::DictionaryObject;
using testing::ExpectAccepted;
using testing::ExpectRejected;
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

ParseOutcome Parse(std::string file) {
  return ParseBinaryPropertyList(SourceBuffer(std::move(file)));
}

// A file of one object, which begins at byte 8.
ParseOutcome ParseObject(const std::string& object) {
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
  EXPECT_TRUE(std::isnan(*ParseObject(RealObject(Nan)).value->AsReal()));
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
                     {AsciiObject(Repeated("x", 14)), Repeated("x", 14)},
                     {AsciiObject(Repeated("x", 15)), Repeated("x", 15)},
                     {AsciiObject(Repeated("x", 64)), Repeated("x", 64)},
                     {AsciiObject(Repeated("x", 65)), Repeated("x", 65)},
                     {Utf16Object(u""), ""},
                     {Utf16Object(u"ab"), "ab"},
                     {Utf16Object(u"\u00E4\u20AC\U0001F600\uFFFD"),
                      "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD"},
                     {Utf16Object(std::u16string(300, u'\u00E4')), Repeated("\xC3\xA4", 300)},
                 });
}

TEST(BinaryPropertyList, RejectsStringsThatAreNotText) {
  const std::string notAscii = "byte 8: a string is not ASCII";
  const std::string notUtf16 = "byte 8: a string is not UTF-16";
  const std::string uncarriable = "byte 8: a string holds a character that XML cannot carry";
  ExpectRejected(ParseObject, {
                                  {AsciiObject("\x80"), notAscii},
                                  {AsciiObject("\xC3\xA4"), notAscii},
                                  {AsciiObject(Repeated("x", 99) + "\xFF"), notAscii},
                                  {AsciiObject({"a\0", 2}), uncarriable},
                                  {AsciiObject("\x1B"), uncarriable},
                                  {AsciiObject(Repeated("x", 99) + "\x01"), uncarriable},
                                  {Utf16Object({0xD83D}), notUtf16},
                                  {Utf16Object({0xDE00}), notUtf16},
                                  {Utf16Object({u'a', 0xDE00, 0xD83D, u'b'}), notUtf16},
                                  {Utf16Object({0xD83D, u'a'}), notUtf16},
                                  {Utf16Object({0xFFFE}), uncarriable},
                                  {Utf16Object({0xFFFF}), uncarriable},
                                  {Utf16Object({u'\0'}), uncarriable},
                                  {Utf16Object({u'a', 0x0B}), uncarriable},
                              });
}

TEST(BinaryPropertyList, RejectsKindsThatAreNoValues) {
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
    const auto outcome = ParseObject(BigEndian(marker, 1) + std::string(64, '\0'));
    EXPECT_NE(outcome.value.has_value(), !outcome.error.empty()) << marker;
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

TEST(BinaryPropertyList, RejectsCountsThatAreNoIntegersOfUpToEightBytes) {
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

// As many objects as make a reference of any byte that could be taken for one.
TEST(BinaryPropertyList, RejectsAContainerWhoseCountIsNoIntegerAmongManyObjects) {
  for (const std::string container : {"\xAF\x22", "\xDF\x22"}) {
    std::vector<std::string> objects(250, True);
    objects.push_back(container);
    EXPECT_EQ(Parse(BinaryFile(objects, {.topObject = 250})).error,
              "byte 259: a count is not an integer");
  }
}

TEST(BinaryPropertyList, RejectsAContainerWhoseCountIsNoInteger) {
  for (const std::string container : {"\xAF\x22", "\xDF\x22"}) {
    EXPECT_EQ(Parse(BinaryFile({True, container}, {.topObject = 1})).error,
              "byte 10: a count is not an integer");
  }
}

TEST(BinaryPropertyList, AcceptsArrays) {
  ExpectAccepted(
      Parse,
      {
          {BinaryFile({ArrayObject({})}), Array{}},
          {BinaryFile({ArrayObject({1, 2}), True, AsciiObject("a")}), Array{true, "a"}},
          {BinaryFile({ArrayObject({2, 1, 2}), True, AsciiObject("a")}), Array{"a", true, "a"}},
          {BinaryFile({ArrayObject(Same(20, 1)), True}), Array(20, true)},
          {BinaryFile({ArrayObject({1, 1}), ArrayObject({2}), True}),
           Array{Array{true}, Array{true}}},
      });
}

TEST(BinaryPropertyList, AcceptsDictionaries) {
  const auto a = AsciiObject("a");
  ExpectAccepted(
      Parse,
      {
          {BinaryFile({DictionaryObject({}, {})}), Dictionary{}},
          {BinaryFile({DictionaryObject({2, 1}, {3, 4}), a, AsciiObject("b"), True, False}),
           Dictionary{{"b", true}, {"a", false}}},
          {BinaryFile({DictionaryObject({1}, {1}), a}), Dictionary{{"a", "a"}}},
          {BinaryFile({DictionaryObject({1}, {2}), Utf16Object(u"\u00E4"), True}),
           Dictionary{{"\xC3\xA4", true}}},
          // A key that occurs twice keeps its first place and its last value.
          {BinaryFile({DictionaryObject({1, 2, 1}, {3, 3, 4}), a, AsciiObject("b"), True, False}),
           Dictionary{{"a", false}, {"b", true}}},
          {BinaryFile({DictionaryObject({1, 2}, {3, 4}), a, Utf16Object(u"a"), True, False}),
           Dictionary{{"a", false}}},
      });
}

TEST(BinaryPropertyList, RejectsKeysThatAreNoStrings) {
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
           "byte 11: a string holds a character that XML cannot carry"},
      });
}

TEST(BinaryPropertyList, EveryWidthOfOffsetAndReferenceReadsTheSame) {
  const PropertyValue expected = Dictionary{{"a", Array{true, "a"}}};
  for (std::size_t offsetWidth = 1; offsetWidth <= 8; ++offsetWidth) {
    for (std::size_t referenceWidth = 1; referenceWidth <= 8; ++referenceWidth) {
      const auto file = BinaryFile(
          {True, AsciiObject("a"), ArrayObject({0, 1}, referenceWidth),
           DictionaryObject({1}, {2}, referenceWidth)},
          {.offsetWidth = offsetWidth, .referenceWidth = referenceWidth, .topObject = 3});
      EXPECT_EQ(Parse(file).value, expected) << offsetWidth << ' ' << referenceWidth;
    }
  }
}

TEST(BinaryPropertyList, MoreThan256ObjectsNeedWiderReferences) {
  std::vector<std::string> objects;
  References elements;
  Array expected;
  for (unsigned i = 1; i <= 1000; ++i) {
    elements.push_back(i);
    expected.emplace_back(i);
  }
  objects.push_back(ArrayObject(elements, 2));
  for (unsigned i = 1; i <= 1000; ++i) objects.push_back('\x11' + BigEndian(i, 2));
  EXPECT_EQ(Parse(BinaryFile(objects, {.referenceWidth = 2})).value, PropertyValue(expected));
}

TEST(BinaryPropertyList, RejectsDanglingReferences) {
  const std::string noObject = "a reference to no object";
  const std::string outside = "an object lies outside the file";
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
                  "byte 19: the offset table does not fit its objects into the file"},
                 {BinaryFile({True}, {.offsetTable = 12}),
                  "byte 35: the offset table lies outside the file"},
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
          // One behind a sibling that does end.
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

// An array that holds `shared` references to one array of `elements` booleans, and `further`
// booleans of its own: 1 + shared + further + shared * elements values.
std::string SharingFile(std::size_t shared, std::size_t elements, std::size_t further) {
  auto references = Same(shared, 1);
  references.insert(references.end(), further, 2);
  return BinaryFile({ArrayObject(references), ArrayObject(Same(elements, 2)), True},
                    {.offsetWidth = 4});
}

TEST(BinaryPropertyList, AcceptsSharingUpTo2To24Values) {
  const auto outcome = Parse(SharingFile(4095, 4096, 0));
  EXPECT_EQ(outcome.error, "");
  ASSERT_TRUE(outcome.value.has_value());
  EXPECT_EQ(outcome.value->AsArray()->size(), 4095u);
  EXPECT_EQ(outcome.value->AsArray()->back(), PropertyValue(Array(4096, true)));
}

TEST(BinaryPropertyList, RejectsMoreSharing) {
  // The shared array begins behind 8 bytes of header and 4 of the first marker and its count.
  EXPECT_EQ(Parse(SharingFile(4095, 4096, 1)).error, "byte 4108: more than 2^24 values");
}

TEST(BinaryPropertyList, ValuesOfSharedDictionariesCountEachTimeAndTheirKeysNever) {
  // 1 + 4095 + further + 4095 * 4096 values.
  const auto sharing = [](std::size_t further) {
    auto references = Same(4095, 1);
    references.insert(references.begin(), further, 2);
    return Parse(
        BinaryFile({DictionaryObject(Same(references.size(), 3), references),
                    DictionaryObject(Same(4096, 3), Same(4096, 2)), True, AsciiObject("a")},
                   {.offsetWidth = 4}));
  };
  const auto outcome = sharing(0);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.value, (Dictionary{{"a", Dictionary{{"a", true}}}}));
  EXPECT_EQ(sharing(1).error, "byte 8204: more than 2^24 values");
}

TEST(BinaryPropertyList, RejectsMoreValuesInOneArray) {
  const std::size_t count = std::size_t{1} << 24;  // and the array itself
  const auto array = CountedMarker(0xA, count) + Repeated("\1", count);
  EXPECT_EQ(Parse(BinaryFile({array, True}, {.offsetWidth = 4})).error,
            "byte 8: more than 2^24 values");
}

// 50 objects each of which holds the next 200 times, the first `dictionaries` of them as a
// dictionary, the others as an array; the last of them holds 200 booleans.
std::vector<std::string> Fanning(std::uint64_t dictionaries) {
  constexpr std::uint64_t Key = 51;
  std::vector<std::string> objects;
  for (std::uint64_t next = 1; next <= 50; ++next) {
    const auto references = Same(200, next);
    objects.push_back(next <= dictionaries ? DictionaryObject(Same(200, Key), references)
                                           : ArrayObject(references));
  }
  objects.push_back(True);
  objects.push_back(AsciiObject("a"));
  return objects;
}

TEST(BinaryPropertyList, RejectsWhatWouldMultiplyAtEveryLevel) {
  const auto arrays = Parse(BinaryFile(Fanning(0)));
  EXPECT_EQ(arrays.error, "byte 9549: more than 2^24 values");
  EXPECT_FALSE(arrays.value.has_value());
  const auto dictionaries = Parse(BinaryFile(Fanning(40)));
  EXPECT_EQ(dictionaries.error, "byte 17549: more than 2^24 values");
  EXPECT_FALSE(dictionaries.value.has_value());
}

constexpr char TooManyLongBytes[] = "more than 2^30 bytes of long keys, strings and data";

// 2^20 bytes of one string or data: it may be reached 2^10 times in all.
const std::string& LongBytes() {
  static const std::string bytes = Repeated("k", 1 << 20);
  return bytes;
}

// A dictionary whose keys are all the same long string, `count` of them, with booleans for values.
std::string SharingOneLongKey(std::size_t count) {
  return BinaryFile(
      {DictionaryObject(Same(count, 1), Same(count, 2)), AsciiObject(LongBytes()), True},
      {.offsetWidth = 4});
}

TEST(BinaryPropertyList, RejectsLongKeysThatAreSharedTooOften) {
  EXPECT_EQ(Parse(SharingOneLongKey(1024)).error, "");
  const auto outcome = Parse(SharingOneLongKey(1025));
  EXPECT_EQ(outcome.error, std::string("byte 2062: ") + TooManyLongBytes);
  EXPECT_FALSE(outcome.value.has_value());
}

// Two dictionaries with the same keys, more of them than are remembered.
TEST(BinaryPropertyList, KeysOfManyDictionariesAreToldApart) {
  constexpr std::size_t KeyCount = 600;
  std::vector<std::string> objects = {"", "", "", True};
  References keys;
  Dictionary expected;
  for (std::size_t i = 0; i < KeyCount; ++i) {
    keys.push_back(objects.size());
    objects.push_back(AsciiObject(std::to_string(i)));
    expected.Set(std::to_string(i), true);
  }
  const References reversed(keys.rbegin(), keys.rend());
  objects[0] = ArrayObject({1, 2}, 2);
  objects[1] = DictionaryObject(keys, Same(KeyCount, 3), 2);
  objects[2] = DictionaryObject(reversed, Same(KeyCount, 3), 2);
  const auto outcome = Parse(BinaryFile(objects, {.offsetWidth = 4, .referenceWidth = 2}));
  ASSERT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.value->AsArray()->front(), PropertyValue(expected));
  const auto entries = outcome.value->AsArray()->back().AsDictionary()->Entries();
  for (std::size_t i = 0; i < KeyCount; ++i) {
    EXPECT_EQ(entries[i].key.View(), std::to_string(KeyCount - 1 - i));
  }
}

TEST(BinaryPropertyList, AKeyOfSeveralDictionariesIsOne) {
  const auto outcome = Parse(BinaryFile({ArrayObject({1, 2}), DictionaryObject({3}, {4}),
                                         DictionaryObject({3}, {3}), AsciiObject("a"), True}));
  ASSERT_EQ(outcome.error, "");
  const auto keyOf = [](const PropertyValue& value) {
    return value.AsDictionary()->Entries().front().key.Address();
  };
  EXPECT_EQ(keyOf(outcome.value->AsArray()->front()), keyOf(outcome.value->AsArray()->back()));
}

// An array of `count` references to the object.
std::string SharingOneObject(std::size_t count, const std::string& object) {
  return BinaryFile({ArrayObject(Same(count, 1)), object}, {.offsetWidth = 4});
}

TEST(BinaryPropertyList, RejectsLongStringsAndDataThatAreSharedTooOften) {
  const auto utf16 = Utf16Object(std::u16string(1 << 19, u'\u00E4'));  // as long once it is UTF-8
  for (const auto& object : {AsciiObject(LongBytes()), DataObject(LongBytes()), utf16}) {
    EXPECT_EQ(Parse(SharingOneObject(1024, object)).error, "");
    const auto outcome = Parse(SharingOneObject(1025, object));
    EXPECT_EQ(outcome.error, std::string("byte 1037: ") + TooManyLongBytes);
    EXPECT_FALSE(outcome.value.has_value());
  }
}

TEST(BinaryPropertyList, LongBytesOfSharedContainersCountEachTimeTheyAreReached) {
  const auto sharing = [](std::size_t count) {
    return Parse(BinaryFile(
        {ArrayObject(Same(count, 1)), ArrayObject(Same(128, 2)), DataObject(LongBytes())},
        {.offsetWidth = 4}));
  };
  EXPECT_EQ(sharing(8).error, "");
  EXPECT_EQ(sharing(9).error, std::string("byte 18: ") + TooManyLongBytes);
}

TEST(BinaryPropertyList, ShortStringsMayBeSharedWithoutThatBound) {
  // 2047 times 8192 entries, whose keys and values are one string: of 64 bytes they stand for twice
  // as much as the bound of longer ones.
  const auto strings = [](std::size_t length) {
    return Parse(BinaryFile(
        {ArrayObject(Same(2047, 1), 2), DictionaryObject(Same(8192, 2), Same(8192, 2), 2),
         AsciiObject(Repeated("s", length))},
        {.offsetWidth = 4, .referenceWidth = 2}));
  };
  EXPECT_EQ(strings(64).error, "");
  EXPECT_EQ(strings(65).error, std::string("byte 4106: ") + TooManyLongBytes);
}

TEST(BinaryPropertyList, ContainerThatIsReachedOftenIsShared) {
  const auto outcome =
      Parse(BinaryFile({ArrayObject({1, 1, 1, 1}), ArrayObject({2, 2, 2}), ArrayObject({})}));
  ASSERT_EQ(outcome.error, "");
  EXPECT_EQ(*outcome.value, PropertyValue(Array(4, Array(3, Array()))));
  const auto& array = *outcome.value->AsArray();
  EXPECT_NE(array[0].AsArray(), array[1].AsArray());  // what is reached once is not kept
  EXPECT_EQ(array[1].AsArray(), array[2].AsArray());
  EXPECT_EQ(array[2].AsArray(), array[3].AsArray());
}

// An array that holds a pair of nested arrays twice and, once more, that pair inside `depth`
// further arrays: 1 + depth + 2 are nested.
std::string SharedPairBelow(std::uint64_t depth) {
  std::vector<std::string> objects = {ArrayObject({1, 1, 3}, 2), ArrayObject({2}, 2),
                                      ArrayObject({}, 2)};
  for (std::uint64_t i = 1; i <= depth; ++i) {
    objects.push_back(ArrayObject({i == depth ? 1 : i + 3}, 2));
  }
  return BinaryFile(objects, {.referenceWidth = 2});
}

// An array that holds a pair of nested arrays twice, an array around that pair twice and, once
// more, the latter inside `depth` further arrays: 1 + depth + 3 are nested.
std::string SharedTripleBelow(std::uint64_t depth) {
  std::vector<std::string> objects = {ArrayObject({1, 1, 3, 3, 4}, 2), ArrayObject({2}, 2),
                                      ArrayObject({}, 2), ArrayObject({1}, 2)};
  for (std::uint64_t i = 1; i <= depth; ++i) {
    objects.push_back(ArrayObject({i == depth ? 3 : i + 4}, 2));
  }
  return BinaryFile(objects, {.referenceWidth = 2});
}

TEST(BinaryPropertyList, HeightOfASharedContainerReachesIntoSharedOnes) {
  EXPECT_EQ(Parse(SharedTripleBelow(508)).error, "");
  EXPECT_EQ(Parse(SharedTripleBelow(509)).error,
            "byte 23: more than 512 arrays and dictionaries are nested in each other");
}

TEST(BinaryPropertyList, SharedContainerCountsItsHeightWhereverItIsReached) {
  EXPECT_EQ(Parse(SharedPairBelow(509)).error, "");
  EXPECT_EQ(Parse(SharedPairBelow(510)).error,
            "byte 15: more than 512 arrays and dictionaries are nested in each other");
}

TEST(BinaryPropertyList, LongStringsMayBeSharedAsValuesOften) {
  const auto ascii = Repeated("x", 1 << 20);
  const auto outcome =
      Parse(BinaryFile({ArrayObject(Same(1000, 1)), AsciiObject(ascii)}, {.offsetWidth = 4}));
  EXPECT_EQ(outcome.error, "");
  const auto& array = *outcome.value->AsArray();
  EXPECT_EQ(array.front().AsString(), ascii);
  EXPECT_EQ(array.front().AsString()->data(), array.back().AsString()->data());
}

TEST(BinaryPropertyList, SharedUtf16StringIsDecodedOnce) {
  const auto outcome =
      Parse(BinaryFile({ArrayObject({1, 1, 2}), Utf16Object(u"\u00E4")}, {.furtherOffsets = {12}}));
  ASSERT_EQ(outcome.error, "");
  const auto& array = *outcome.value->AsArray();
  EXPECT_EQ(array[0].AsString(), "\xC3\xA4");
  EXPECT_EQ(array[0].AsString()->data(), array[1].AsString()->data());
  EXPECT_EQ(array[0].AsString()->data(), array[2].AsString()->data());
}

TEST(BinaryPropertyList, RejectsStringsThatOverlapToStandForMoreTextThanTheFile) {
  // Every four bytes begin another string of 1000 units, which are U+6F11 and U+03E8 by turns.
  const auto strings = Repeated("\x6F\x11\x03\xE8", 1000);
  constexpr std::uint64_t Start = 8 + 3 + 2 * 100;  // behind the header and the array
  BinaryShape shape{.referenceWidth = 2, .topObject = 2};
  References elements;
  for (std::uint64_t i = 0; i < 100; ++i) {
    elements.push_back(2 + i);
    shape.furtherOffsets.push_back(Start + 4 * i);
  }
  const std::vector<std::string> objects = {ArrayObject(elements, 2), strings};
  EXPECT_EQ(Parse(BinaryFile(objects, shape)).value,
            PropertyValue(Repeated("\xE6\xBC\x91\xCF\xA8", 500)));
  shape.topObject = 0;
  EXPECT_EQ(Parse(BinaryFile(objects, shape)).error, "byte 219: strings overlap");
}

// An array of fewer than 15 strings of 2000 bytes each, every four bytes beginning another, in a
// file of `size` bytes.
std::string OverlappingStrings(std::uint64_t count, std::size_t size) {
  const auto strings = Repeated("\x6F\x11\x03\xE8", 1000);
  const std::uint64_t start = 8 + 1 + 2 * count;  // behind the header and the array
  BinaryShape shape{.referenceWidth = 2};
  References elements;
  for (std::uint64_t i = 0; i < count; ++i) {
    elements.push_back(3 + i);
    shape.furtherOffsets.push_back(start + 4 * i);
  }
  const auto array = ArrayObject(elements, 2);
  const auto filler = size - BinaryFile({array, strings, ""}, shape).size();
  return BinaryFile({array, strings, std::string(filler, '\0')}, shape);
}

TEST(BinaryPropertyList, StringsThatOverlapMayStandForAsMuchTextAsTheFileIsLong) {
  EXPECT_EQ(Parse(OverlappingStrings(3, 6000)).error, "");
  EXPECT_EQ(Parse(OverlappingStrings(3, 5999)).error, "byte 23: strings overlap");
  EXPECT_EQ(Parse(OverlappingStrings(4, 6000)).error, "byte 29: strings overlap");
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
  ASSERT_EQ(Parse(file).error, "");
  for (std::size_t size = 8; size < file.size(); ++size) {
    const auto outcome = Parse(Truncated(file, size));
    EXPECT_FALSE(outcome.value.has_value()) << size;
    EXPECT_NE(outcome.error, "") << size;
  }
}

TEST(BinaryPropertyList, AnyByteMayBeAnyOtherWithoutHarm) {
  const auto& file = SampleFile();
  for (std::size_t at = 0; at < file.size(); ++at) {
    for (unsigned byte = 0; byte < 256; ++byte) {
      const auto outcome = Parse(WithByte(file, at, static_cast<unsigned char>(byte)));
      ASSERT_EQ(outcome.value.has_value(), outcome.error.empty()) << at << ' ' << byte;
    }
  }
}

TEST(BinaryPropertyList, AsciiStringsAndDataViewTheFile) {
  const auto file =
      SourceBuffer(BinaryFile({ArrayObject({1, 2}), AsciiObject("text"), DataObject("data")}));
  const auto outcome = ParseBinaryPropertyList(file);
  ASSERT_EQ(outcome.error, "");
  const auto& array = *outcome.value->AsArray();
  EXPECT_EQ(array[0].AsString()->data(), file.View().data() + 12);
  EXPECT_EQ(array[1].AsData()->data(), file.View().data() + 17);
}

}  // namespace
}  // namespace fernwick
