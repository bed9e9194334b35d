#include "value/xml/encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::ErrorOf;

const std::string Utf8Mark = "\xEF\xBB\xBF";
const std::string BigEndianMark = "\xFE\xFF";
const std::string LittleEndianMark = "\xFF\xFE";

SourceText Source(std::string bytes) {
  auto& arena = testing::ValueArena();
  return DecodeSource(arena.Adopt(std::move(bytes)), arena);
}

std::string Declaring(const std::string& encoding, const std::string& rest) {
  return "<?xml version='1.0' encoding='" + encoding + "'?>" + rest;
}

// ASCII as UTF-16, the high byte first.
std::string Widened(const std::string& ascii) {
  std::string bytes;
  for (const char c : ascii) bytes += std::string(1, '\0') + c;
  return bytes;
}

struct DecodedRow {
  std::string bytes;
  std::string text;
};

TEST(XmlEncoding, FollowsTheMarkOrElseTheDeclaration) {
  const std::string umlaut = "\xC3\xA4";
  const std::string umlautIn16 = {"\0\xE4", 2};
  const DecodedRow rows[] = {
      {"", ""},
      {umlaut, umlaut},
      {Utf8Mark + umlaut, umlaut},
      {"<?xml version='1.0'?>" + umlaut, "<?xml version='1.0'?>" + umlaut},
      {Declaring("UTF-8", umlaut), Declaring("UTF-8", umlaut)},
      {Declaring("utf-8", umlaut), Declaring("utf-8", umlaut)},
      {Declaring("US-ASCII", "a"), Declaring("US-ASCII", "a")},
      {Declaring("us-ascii", "\x7F"), Declaring("us-ascii", "\x7F")},
      {Declaring("ISO-8859-1", "\xE4\x80\xFF"),
       Declaring("ISO-8859-1", umlaut + "\xC2\x80\xC3\xBF")},
      {Declaring("iso-8859-1", umlaut), Declaring("iso-8859-1", "\xC3\x83\xC2\xA4")},
      {BigEndianMark + umlautIn16, umlaut},
      // A mark outweighs the declaration.
      {Utf8Mark + Declaring("ISO-8859-1", umlaut), Declaring("ISO-8859-1", umlaut)},
      {Utf8Mark + Declaring("US-ASCII", umlaut), Declaring("US-ASCII", umlaut)},
      {Utf8Mark + Declaring("EBCDIC", umlaut), Declaring("EBCDIC", umlaut)},
      {BigEndianMark + Widened(Declaring("UTF-8", "")) + umlautIn16, Declaring("UTF-8", umlaut)},
      {BigEndianMark + Widened(Declaring("UTF-16", "a")), Declaring("UTF-16", "a")},
      // The declaration is not read when the mark determines the encoding.
      {Utf8Mark + "<?xml?>", "<?xml?>"},
  };
  for (const auto& [bytes, text] : rows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    Arena arena;
    const auto decoded = DecodeXmlDocument(Source(bytes), arena);
    ASSERT_EQ(ErrorOf(decoded), "");
    EXPECT_EQ(*decoded, text);
  }
}

TEST(XmlEncoding, DocumentInUtf8IsNotCopied) {
  const auto source = Source(Declaring("UTF-8", ""));
  Arena arena;
  const auto decoded = DecodeXmlDocument(source, arena);
  ASSERT_EQ(ErrorOf(decoded), "");
  EXPECT_EQ(decoded->data(), source.text.data());
  EXPECT_EQ(arena.Size(), 0u);
}

struct UndecodableRow {
  std::string bytes;
  std::string error;
};

TEST(XmlEncoding, RejectsWhatItDoesNotDeclareOrXmlCannotCarry) {
  const std::string notUtf8 = "the text is not UTF-8";
  const std::string notXmlCharacter = "a character that XML cannot carry";
  const UndecodableRow rows[] = {
      {"<a>\xE4</a>", "line 1, column 4: " + notUtf8},
      {"<a>\n\xC3\xA4\xC3</a>", "line 2, column 2: " + notUtf8},
      {"<a>\xED\xA0\x80</a>", "line 1, column 4: " + notUtf8},
      {Utf8Mark + "\xE4", "line 1, column 1: " + notUtf8},
      {Declaring("UTF-8", "\n\xE4"), "line 2, column 1: " + notUtf8},
      {std::string("a\0b", 3), "line 1, column 2: " + notXmlCharacter},
      {"a\n\x1B", "line 2, column 1: " + notXmlCharacter},
      {"<!-- \x01 -->", "line 1, column 6: " + notXmlCharacter},
      {"\xEF\xBF\xBE", "line 1, column 1: " + notXmlCharacter},
      {"\xEF\xBF\xBF", "line 1, column 1: " + notXmlCharacter},
      {Declaring("ISO-8859-1", "\n\xE4\x02"), "line 2, column 2: " + notXmlCharacter},
      {Declaring("US-ASCII", "\na\xE4"),
       "line 2, column 2: the text is not US-ASCII, which it declares"},
      {Declaring("US-ASCII", "\x80"),
       "line 1, column 42: the text is not US-ASCII, which it declares"},
      {Declaring("UTF-16", ""), "line 1, column 31: the encoding UTF-16 needs a byte-order mark"},
      {Declaring("utf-16", ""), "line 1, column 31: the encoding utf-16 needs a byte-order mark"},
      {Declaring("UTF-7", ""), "line 1, column 31: the encoding UTF-7 is not supported"},
      {Declaring("UTF8", ""), "line 1, column 31: the encoding UTF8 is not supported"},
      {Declaring("ASCII", ""), "line 1, column 31: the encoding ASCII is not supported"},
      {Declaring("windows-1252", ""),
       "line 1, column 31: the encoding windows-1252 is not supported"},
      {Declaring("ISO-8859-15", ""),
       "line 1, column 31: the encoding ISO-8859-15 is not supported"},
      {Declaring(std::string(50, 'x'), ""),
       "line 1, column 31: the encoding " + std::string(40, 'x') + "... is not supported"},
      {Declaring("", ""), "line 1, column 30: the XML declaration is malformed"},
      {Declaring("UTF 8", ""), "line 1, column 30: the XML declaration is malformed"},
      {"<?xml version='1.0'>", "line 1, column 20: the XML declaration is malformed"},
      {BigEndianMark + Widened("<a>\nb") + "\xD8", "line 2, column 2: the text is not UTF-16"},
      {BigEndianMark + Widened("a") + "\xDC" + Widened("a"),
       "line 1, column 2: the text is not UTF-16"},
      {LittleEndianMark + std::string("a\0\x3D\xD8", 4),
       "line 1, column 2: the text is not UTF-16"},
      {BigEndianMark + Widened("a") + "\xFF\xFE", "line 1, column 2: " + notXmlCharacter},
      {BigEndianMark + Widened("a\x01") + "\xD8", "line 1, column 2: " + notXmlCharacter},
  };
  for (const auto& [bytes, error] : rows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    Arena arena;
    EXPECT_EQ(ErrorOf(DecodeXmlDocument(Source(bytes), arena)), error);
  }
}

}  // namespace
}  // namespace fernwick
