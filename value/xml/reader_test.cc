#include "value/xml/reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/inputs/corruption.h"
#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::DateOf;
using testing::Dict;
using testing::ErrorOf;
using testing::ExpectAccepted;
using testing::ExpectRejected;
using testing::List;
using testing::NestedArrays;
using testing::RejectedRow;
using testing::Repeated;
using testing::Truncated;

Result<PropertyValue> Parse(std::string document) {
  auto& arena = testing::ValueArena();
  return ParseXmlPropertyList(DecodeSource(arena.Adopt(std::move(document)), arena), arena);
}

// Inside <plist> on a line of its own, so that columns count from the value.
Result<PropertyValue> ParseInPlist(const std::string& value) {
  return Parse("<plist>\n" + value + "\n</plist>");
}

const std::string Dtd =
    "<!DOCTYPE plist PUBLIC \"-//Someone//DTD Something 1.0//EN\" "
    "\"http://nowhere.invalid/a.dtd\">";

TEST(XmlPropertyList, AcceptsEveryKindOfValue) {
  ExpectAccepted(
      ParseInPlist,
      {
          {"<string>text</string>", "text"},
          {"<string></string>", ""},
          {"<string/>", ""},
          {"<integer>42</integer>", 42},
          {"<real>0.5</real>", 0.5},
          {"<true/>", true},
          {"<false/>", false},
          {"<true></true>", true},
          {"<data>Zm9v</data>", Bytes("foo")},
          {"<data/>", Bytes("")},
          {"<date>2026-11-20T00:00:00Z</date>", DateOf("2026-11-20T00:00:00Z")},
          {"<array/>", Array()},
          {"<array></array>", Array()},
          {"<dict/>", Dictionary()},
          {"<dict>\n</dict>", Dictionary()},
          {"<array><true/><array/><string>a</string></array>", List({true, Array(), "a"})},
          {"<dict><key>b</key><true/><key>a</key><dict><key/><true/></dict></dict>",
           Dict({{"b", true}, {"a", Dict({{"", true}})}})},
      });
}

TEST(XmlPropertyList, PlistAndDeclarationMayBeMissing) {
  ExpectAccepted(Parse,
                 {
                     {"<true/>", true},
                     {"<plist><true/></plist>", true},
                     {"<?xml version='1.0'?><true/>", true},
                     {"<?xml version='1.0'?>" + Dtd + "<plist version='1.0'><true/></plist>", true},
                     {Dtd + "<array/>", Array()},
                     {"\n\t <true/>\n\t ", true},
                     {"<string>a</string>", "a"},
                     {"<dict><key>a</key><true/></dict>", Dict({{"a", true}})},
                 });
}

TEST(XmlPropertyList, RepeatedKeyKeepsItsFirstPositionAndItsLastValue) {
  ExpectAccepted(ParseInPlist, {{"<dict><key>a</key><integer>1</integer><key>b</key><integer>2"
                                 "</integer><key>a</key><integer>3</integer></dict>",
                                 Dict({{"a", 3}, {"b", 2}})}});
}

TEST(XmlPropertyList, MarkupThatMeansNothingIsIgnored) {
  ExpectAccepted(
      Parse,
      {
          {"<!-- a --><?b c?><plist><!-- d --><?e?><true/><!-- f --></plist><!-- g --><?h?>", true},
          {"<plist version='1.0' other=\"&amp;\"><string a='b'>c</string ></plist >", "c"},
          {"<array><!-- <true/> --><true/><?x <false/>?></array>", List({true})},
          {"<dict><!-- a --><key>a</key><!-- b --><true/><!-- c --></dict>", Dict({{"a", true}})},
          {"<integer>4<!-- the answer -->2</integer>", 42},
          {"<true><!-- yes --></true>", true},
          {"<data>Zm<?x?>9v</data>", Bytes("foo")},
      });
}

TEST(XmlPropertyList, TextKeepsItsWhiteSpaceAndResolvesItsReferences) {
  ExpectAccepted(ParseInPlist,
                 {
                     {"<string> a\tb </string>", " a\tb "},
                     {"<string>\n</string>", "\n"},
                     {"<string>a\r\nb\rc</string>", "a\nb\nc"},
                     {"<string>a&#13;b&#13;&#10;c</string>", "a\rb\r\nc"},
                     {"<string>&lt;&amp;&gt;&quot;&apos;</string>", "<&>\"'"},
                     {"<string>&#228;&#x1F600;</string>", "\xC3\xA4\xF0\x9F\x98\x80"},
                     {"<string><![CDATA[<a>&amp;]]></string>", "<a>&amp;"},
                     {"<string>a<![CDATA[b]]>c<!-- d -->e</string>", "abce"},
                     {"<string>]]&gt;</string>", "]]>"},
                     {"<string>\xC3\xA4\x7F\xC2\x85</string>", "\xC3\xA4\x7F\xC2\x85"},
                     {"<dict><key> &lt;a&gt; </key><true/></dict>", Dict({{" <a> ", true}})},
                     {"<dict><key><![CDATA[a]]></key><true/></dict>", Dict({{"a", true}})},
                 });
}

TEST(XmlPropertyList, AcceptsIntegersOfEitherSignAndBase) {
  ExpectAccepted(
      ParseInPlist,
      {
          {"<integer>0</integer>", 0},
          {"<integer>-5</integer>", -5},
          {"<integer>+5</integer>", 5},
          {"<integer>0x1F</integer>", 31},
          {"<integer>-0x1f</integer>", -31},
          {"<integer>&#49;&#50;</integer>", 12},
          {"<integer>-9223372036854775808</integer>", std::numeric_limits<std::int64_t>::min()},
          {"<integer>18446744073709551615</integer>", std::numeric_limits<std::uint64_t>::max()},
      });
}

TEST(XmlPropertyList, RejectsOtherIntegers) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<integer/>", "line 2, column 1: \"\" is not a valid integer"},
          {"<integer></integer>", "line 2, column 1: \"\" is not a valid integer"},
          {"<integer> 5</integer>", "line 2, column 1: \" 5\" is not a valid integer"},
          {"<integer>5 </integer>", "line 2, column 1: \"5 \" is not a valid integer"},
          {"<integer>5\n</integer>", "line 2, column 1: \"5 \" is not a valid integer"},
          {"<integer>5.0</integer>", "line 2, column 1: \"5.0\" is not a valid integer"},
          {"<integer>1e3</integer>", "line 2, column 1: \"1e3\" is not a valid integer"},
          {"<integer>five</integer>", "line 2, column 1: \"five\" is not a valid integer"},
          {"<integer>18446744073709551616</integer>",
           "line 2, column 1: \"18446744073709551616\" is not a valid integer"},
          {"<integer>-9223372036854775809</integer>",
           "line 2, column 1: \"-9223372036854775809\" is not a valid integer"},
          {"<integer>" + Repeated("9", 50) + "</integer>",
           "line 2, column 1: \"" + Repeated("9", 40) + "...\" is not a valid integer"},
      });
}

TEST(XmlPropertyList, AcceptsReals) {
  ExpectAccepted(ParseInPlist,
                 {
                     {"<real>3</real>", 3.0},
                     {"<real>-1.5e+10</real>", -1.5e10},
                     {"<real>.5</real>", 0.5},
                     {"<real>5.</real>", 5.0},
                     {"<real>inf</real>", std::numeric_limits<double>::infinity()},
                     {"<real>-Infinity</real>", -std::numeric_limits<double>::infinity()},
                 });
}

TEST(XmlPropertyList, AcceptsNan) {
  const auto value = Parse("<real>NaN</real>");
  ASSERT_EQ(ErrorOf(value), "");
  ASSERT_TRUE(value->AsReal().has_value());
  EXPECT_TRUE(std::isnan(*value->AsReal()));
}

TEST(XmlPropertyList, RejectsOtherReals) {
  ExpectRejected(ParseInPlist,
                 {
                     {"<real/>", "line 2, column 1: \"\" is not a valid real"},
                     {"<real> 1</real>", "line 2, column 1: \" 1\" is not a valid real"},
                     {"<real>1 </real>", "line 2, column 1: \"1 \" is not a valid real"},
                     {"<real>0x10</real>", "line 2, column 1: \"0x10\" is not a valid real"},
                     {"<real>1,5</real>", "line 2, column 1: \"1,5\" is not a valid real"},
                     {"<real>nan(1)</real>", "line 2, column 1: \"nan(1)\" is not a valid real"},
                     {"<real>1e309</real>", "line 2, column 1: \"1e309\" is not a valid real"},
                     {"<real>1e-400</real>", "line 2, column 1: \"1e-400\" is not a valid real"},
                 });
}

TEST(XmlPropertyList, AcceptsDataWithWhiteSpaceAnywhere) {
  ExpectAccepted(ParseInPlist, {
                                   {"<data>\n\tZm9v\n\tYmFy\n</data>", Bytes("foobar")},
                                   {"<data> Z g = = </data>", Bytes("f")},
                                   {"<data>\r\n</data>", Bytes("")},
                               });
}

TEST(XmlPropertyList, RejectsOtherData) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<data>Zg</data>", "line 2, column 1: \"Zg\" is not a valid data"},
          {"<data>Zg=</data>", "line 2, column 1: \"Zg=\" is not a valid data"},
          {"<data>Zg==Zg==</data>", "line 2, column 1: \"Zg==Zg==\" is not a valid data"},
          {"<data>Zm_v</data>", "line 2, column 1: \"Zm_v\" is not a valid data"},
          {"<data>\nZm\n</data>", "line 2, column 1: \" Zm \" is not a valid data"},
      });
}

TEST(XmlPropertyList, RejectsOtherDates) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<date/>", "line 2, column 1: \"\" is not a valid date"},
          {"<date>2026-11-20</date>", "line 2, column 1: \"2026-11-20\" is not a valid date"},
          {"<date> 2026-11-20T00:00:00Z</date>",
           "line 2, column 1: \" 2026-11-20T00:00:00Z\" is not a valid date"},
          {"<date>2026-11-20T00:00:00Z </date>",
           "line 2, column 1: \"2026-11-20T00:00:00Z \" is not a valid date"},
          {"<date>2026-02-29T00:00:00Z</date>",
           "line 2, column 1: \"2026-02-29T00:00:00Z\" is not a valid date"},
          {"<date>0000-01-01T00:00:00Z</date>",
           "line 2, column 1: \"0000-01-01T00:00:00Z\" is not a valid date"},
      });
}

TEST(XmlPropertyList, RejectsBooleansWithContent) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<true>yes</true>", "line 2, column 1: \"yes\" is not a valid true"},
          {"<false> </false>", "line 2, column 1: \" \" is not a valid false"},
          {"<true><false/></true>", "line 2, column 7: <true> contains something other than text"},
      });
}

TEST(XmlPropertyList, RejectsElementsInsideText) {
  ExpectRejected(ParseInPlist,
                 {
                     {"<string>a<b/></string>",
                      "line 2, column 10: <string> contains something other than text"},
                     {"<integer><integer>1</integer></integer>",
                      "line 2, column 10: <integer> contains something other than text"},
                     {"<dict><key><string/></key><true/></dict>",
                      "line 2, column 12: <key> contains something other than text"},
                 });
}

TEST(XmlPropertyList, RejectsMissingAndMismatchedEndTags) {
  ExpectRejected(
      Parse,
      {
          {"<string>a", "line 1, column 10: </string> is missing"},
          {"<string>a</strin>", "line 1, column 10: </strin> found where </string> was expected"},
          {"<string>a</string", "line 1, column 10: an end tag is malformed"},
          {"<string", "line 1, column 1: a start tag does not end"},
          {"<array>", "line 1, column 8: the document ends too early"},
          {"<array><true/>", "line 1, column 15: the document ends too early"},
          {"<array><true></array>", "line 1, column 14: </array> found where </true> was expected"},
          {"<array><true/></dict>", "line 1, column 15: </dict> found where </array> was expected"},
          {"<dict></array>", "line 1, column 7: </array> found where </dict> was expected"},
          {"<dict>", "line 1, column 7: the document ends too early"},
          {"<dict><key>a", "line 1, column 13: </key> is missing"},
          {"<dict><key>a</key>", "line 1, column 19: the document ends too early"},
          {"<dict><key>a</key><true/>", "line 1, column 26: the document ends too early"},
          {"<plist>", "line 1, column 8: the document ends too early"},
          {"<plist><true/>", "line 1, column 15: </plist> is missing"},
          {"<plist><true/></Plist>",
           "line 1, column 15: </Plist> found where </plist> was expected"},
          {"<plist><true/></array></plist>",
           "line 1, column 15: </array> found where </plist> was expected"},
      });
}

TEST(XmlPropertyList, RejectsWhatFollowsTheRoot) {
  const std::string error = "line 1, column 8: something follows the root element";
  ExpectRejected(
      Parse,
      {
          {"<true/>x", error},
          {"<true/><true/>", error},
          {"<true/>&amp;", error},
          {"<true/><![CDATA[]]>", error},
          {"<true/></plist>", error},
          {"<true/>" + Dtd, error},
          {"<plist><true/></plist>\n\nx", "line 3, column 1: something follows the root element"},
          {"<true/><?xml version='1.0'?>",
           "line 1, column 8: an XML declaration is allowed only at the very start"},
          {"<true/><!-- ", "line 1, column 8: a comment does not end"},
      });
}

TEST(XmlPropertyList, RejectsACommentThatDoesNotEndWhereverItIs) {
  const auto endless = [](const std::string& before) {
    return RejectedRow{before + "<!-- ", "line 1, column " + std::to_string(before.size() + 1) +
                                             ": a comment does not end"};
  };
  ExpectRejected(Parse, {
                            endless(""),
                            endless("<plist>"),
                            endless("<plist><true/>"),
                            endless("<plist><true/></plist>"),
                            endless("<array>"),
                            endless("<array><true/>"),
                            endless("<dict>"),
                            endless("<dict><key>a</key>"),
                            endless("<dict><key>a</key><true/>"),
                        });
}

// Texts that would be accepted if reading went on after the fault.
TEST(XmlPropertyList, RejectsACommentWithTwoHyphensWhereverItIs) {
  const auto hyphens = [](const std::string& before, const std::string& after) {
    return RejectedRow{before + "<!--a--" + after, "line 1, column " +
                                                       std::to_string(before.size() + 6) +
                                                       ": \"--\" is not allowed inside a comment"};
  };
  ExpectRejected(Parse, {
                            hyphens("", "<true/>"),
                            hyphens("<plist>", ""),
                            hyphens("<plist>", "<true/></plist>"),
                            hyphens("<plist><true/>", "</plist>"),
                            hyphens("<plist><true/></plist>", ""),
                            hyphens("<true/>", ""),
                            hyphens("<array>", ""),
                            hyphens("<dict>", ""),
                            hyphens("<dict><key>a</key>", ""),
                            hyphens("<array><string>", ""),
                            hyphens("<array>", "</array>"),
                            hyphens("<array>", "<true/></array>"),
                            hyphens("<array><string>", "</array>"),
                            hyphens("<array><string>", "</string></array>"),
                            hyphens("<dict>", "<key>a</key><true/></dict>"),
                            hyphens("<dict><key>", "</key><true/></dict>"),
                            hyphens("<dict><key>a</key>", "<true/></dict>"),
                            hyphens("<dict><key>a</key>", "<key>b</key><true/></dict>"),
                            hyphens("<dict><key>a</key>", "</dict>"),
                        });
}

TEST(XmlPropertyList, RejectsTextAroundElements) {
  const std::string error = "text found where an element was expected";
  ExpectRejected(
      Parse,
      {
          {"text", "line 1, column 1: " + error},
          {"<!-- -->text<true/>", "line 1, column 9: " + error},
          {"<plist>text</plist>", "line 1, column 8: " + error},
          {"<plist><true/>text</plist>", "line 1, column 15: </plist> is missing"},
          {"<array>text<true/></array>", "line 1, column 8: " + error},
          {"<array><true/>,<true/></array>", "line 1, column 15: " + error},
          {"<array>&#32;</array>", "line 1, column 8: " + error},
          {"<dict>a<true/></dict>", "line 1, column 7: " + error},
          {"<dict><key>a</key>=<true/></dict>", "line 1, column 19: " + error},
          {"<array><![CDATA[ ]]></array>", "line 1, column 9: the name of an element is missing"},
      });
}

TEST(XmlPropertyList, RejectsMarkupThatIsNotWellFormed) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<string>a]]>b</string>", "line 2, column 10: \"]]>\" is not allowed in text"},
          {"<string>a & b</string>", "line 2, column 11: \"&\" does not begin a reference"},
          {"<string>&nbsp;</string>", "line 2, column 9: the entity &nbsp; is not defined"},
          {"<string>&#0;</string>", "line 2, column 9: &#0; is no character that XML can carry"},
          {"<string>&#xFFFF;</string>",
           "line 2, column 9: &#xFFFF; is no character that XML can carry"},
          {"<string a='1' a='2'/>", "line 2, column 1: the attribute a occurs twice in one tag"},
          {"<string a='<'/>",
           "line 2, column 12: \"<\" is not allowed inside the value of an attribute"},
          {"<string a/>", "line 2, column 10: the attribute a has no value"},
          {"<string a=1/>", "line 2, column 11: the value of an attribute is not quoted"},
          {"<string a='&b;'/>", "line 2, column 12: the entity &b; is not defined"},
          {"<!-- a -- b --><true/>", "line 2, column 8: \"--\" is not allowed inside a comment"},
          {"<?xml version='1.0'?><true/>",
           "line 2, column 1: an XML declaration is allowed only at the very start"},
          {"<!DOCTYPE plist><true/>", "line 2, column 2: the name of an element is missing"},
          {"< true/>", "line 2, column 2: the name of an element is missing"},
          {"<true/ >", "line 2, column 6: a start tag is malformed"},
          {"<string>a</string b='c'>", "line 2, column 10: an end tag is malformed"},
          {"<string>a</ string>", "line 2, column 12: the name of an element is missing"},
      });
}

TEST(XmlPropertyList, RejectsAMalformedProlog) {
  ExpectRejected(Parse,
                 {
                     {" <?xml version='1.0'?><true/>",
                      "line 1, column 2: an XML declaration is allowed only at the very start"},
                     {"<?xml version='1.0'?><?xml version='1.0'?><true/>",
                      "line 1, column 22: an XML declaration is allowed only at the very start"},
                     {"<?xml?><true/>", "line 1, column 6: the XML declaration is malformed"},
                     {"<?xml version='1.0' standalone='maybe'?><true/>",
                      "line 1, column 32: the XML declaration is malformed"},
                     {"<?xml version='1.0' encoding=''?><true/>",
                      "line 1, column 30: the XML declaration is malformed"},
                     {"\xEF\xBB\xBF<?xml version='1.0' encoding=''?><true/>",
                      "line 1, column 30: the XML declaration is malformed"},
                     {"<!DOCTYPE plist [<!ENTITY a 'b'>]><true/>",
                      "line 1, column 17: a document type declaration with an internal subset is "
                      "not accepted"},
                     {"<!DOCTYPE plist SYSTEM 'a' [ ]><true/>",
                      "line 1, column 28: a document type declaration with an internal subset is "
                      "not accepted"},
                     {"<!DOCTYPE plist><!DOCTYPE plist><true/>",
                      "line 1, column 18: the name of an element is missing"},
                     {"<?XML?><true/>",
                      "line 1, column 1: an XML declaration is allowed only at the very start"},
                     {Dtd, "line 1, column 91: the document ends too early"},
                     {"<!-- nothing more -->", "line 1, column 22: the document ends too early"},
                     {"</plist>", "line 1, column 2: the name of an element is missing"},
                     {"", "line 1, column 1: the document ends too early"},
                 });
}

TEST(XmlPropertyList, RejectsAPlistThatDoesNotContainOneValue) {
  ExpectRejected(Parse,
                 {
                     {"<plist/>", "line 1, column 1: <plist> contains no value"},
                     {"<plist></plist>", "line 1, column 8: <plist> contains no value"},
                     {"<plist>\n<!-- -->\n</plist>", "line 3, column 1: <plist> contains no value"},
                     {"<plist><true/><false/></plist>",
                      "line 1, column 15: <plist> contains more than one value"},
                     {"<plist><plist><true/></plist></plist>",
                      "line 1, column 8: <plist> is no property-list element"},
                     {"<plist><key>a</key></plist>",
                      "line 1, column 8: <key> found where a value was expected"},
                 });
}

TEST(XmlPropertyList, RejectsMalformedDictionaries) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<dict><key>a</key></dict>", "line 2, column 7: a key has no value"},
          {"<dict><key>a</key><true/><key>b</key></dict>", "line 2, column 26: a key has no value"},
          {"<dict><true/></dict>", "line 2, column 7: <true> found where <key> was expected"},
          {"<dict><key>a</key><true/><true/></dict>",
           "line 2, column 26: <true> found where <key> was expected"},
          {"<dict><key>a</key><key>b</key><true/></dict>",
           "line 2, column 19: <key> found where a value was expected"},
          {"<dict><string>a</string><true/></dict>",
           "line 2, column 7: <string> found where <key> was expected"},
      });
}

TEST(XmlPropertyList, RejectsUnknownElements) {
  ExpectRejected(
      ParseInPlist,
      {
          {"<foo/>", "line 2, column 1: <foo> is no property-list element"},
          {"<String>a</String>", "line 2, column 1: <String> is no property-list element"},
          {"<array><null/></array>", "line 2, column 8: <null> is no property-list element"},
          {"<set/>", "line 2, column 1: <set> is no property-list element"},
          {"<p:true/>", "line 2, column 1: <p:true> is no property-list element"},
          {"<array><key>a</key></array>",
           "line 2, column 8: <key> found where a value was expected"},
          {"<" + Repeated("x", 50) + "/>",
           "line 2, column 1: <" + Repeated("x", 40) + "...> is no property-list element"},
      });
  ExpectRejected(
      Parse,
      {
          {"<foo/>", "line 1, column 1: <foo> is no property-list element"},
          {"<html><body/></html>", "line 1, column 1: <html> is no property-list element"},
          {"<Plist><true/></Plist>", "line 1, column 1: <Plist> is no property-list element"},
      });
}

// Units as UTF-16 with a byte-order mark, the high byte first.
std::string AsUtf16(const std::u16string& units) {
  std::string bytes = "\xFE\xFF";
  for (const char16_t unit : units) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
  }
  return bytes;
}

TEST(XmlPropertyList, ReadsEveryEncodingThatItNames) {
  const std::string umlaut = "\xC3\xA4";
  ExpectAccepted(
      Parse, {
                 {"\xEF\xBB\xBF<string>" + umlaut + "</string>", umlaut},
                 {"<?xml version='1.0' encoding='UTF-8'?><string>" + umlaut + "</string>", umlaut},
                 {"<?xml version='1.0' encoding='ISO-8859-1'?><string>\xE4</string>", umlaut},
                 {"<?xml version='1.0' encoding='US-ASCII'?><string>a</string>", "a"},
                 {{"\xFF\xFE<\0t\0r\0u\0e\0/\0>\0", 16}, true},
                 {{"\xFE\xFF\0<\0t\0r\0u\0e\0/\0>", 16}, true},
                 {AsUtf16(u"<string>\U0001F600</string>"), "\xF0\x9F\x98\x80"},
             });
}

TEST(XmlPropertyList, RejectsOtherEncodings) {
  ExpectRejected(
      Parse,
      {
          {"<string>\xE4</string>", "line 1, column 9: the text is not UTF-8"},
          {"<string>\x01</string>", "line 1, column 9: a character that XML cannot carry"},
          {"<!-- \x1B --><true/>", "line 1, column 6: a character that XML cannot carry"},
          {"<string>\xED\xA0\xBD\xED\xB8\x80</string>", "line 1, column 9: the text is not UTF-8"},
          {"<?xml version='1.0' encoding='Shift_JIS'?><true/>",
           "line 1, column 31: the encoding Shift_JIS is not supported"},
          {"<?xml version='1.0' encoding='UTF-16'?><true/>",
           "line 1, column 31: the encoding UTF-16 needs a byte-order mark"},
          {{"\xFF\xFE<\0t\0r\0u\0e\0/\0>\0\0", 17}, "line 1, column 8: the text is not UTF-16"},
          {AsUtf16({u'<', u'k', 0xD83D, u'>'}), "line 1, column 3: the text is not UTF-16"},
          {AsUtf16({u'<', u'k', 0xDE00, u'>'}), "line 1, column 3: the text is not UTF-16"},
          {AsUtf16({u'<', u'k', 0xDE00, 0xD83D, u'>'}), "line 1, column 3: the text is not UTF-16"},
      });
}

TEST(XmlPropertyList, AcceptsNestingUpTo512) {
  ExpectAccepted(Parse, {{Repeated("<array>", 512) + "<true/>" + Repeated("</array>", 512),
                          NestedArrays(512, true)}});
  EXPECT_EQ(
      ErrorOf(Parse(Repeated("<dict><key>a</key>", 511) + "<array/>" + Repeated("</dict>", 511))),
      "");
}

TEST(XmlPropertyList, NestingCountsWhatIsOpenNotWhatWas) {
  EXPECT_EQ(ErrorOf(Parse("<array>" + Repeated("<array/><dict></dict>", 1000) + "</array>")), "");
}

TEST(XmlPropertyList, RejectsDeeperNesting) {
  const std::string error = "more than 512 arrays and dictionaries are nested in each other";
  ExpectRejected(
      Parse,
      {
          {Repeated("<array>", 513) + Repeated("</array>", 513), "line 1, column 3585: " + error},
          {Repeated("<array>", 512) + "<array/>" + Repeated("</array>", 512),
           "line 1, column 3585: " + error},
          {Repeated("<array>\n", 512) + "<dict/>", "line 513, column 1: " + error},
          {Repeated("<dict><key>a</key>", 513), "line 1, column 9217: " + error},
          {Repeated("<array>", 1000000), "line 1, column 3585: " + error},
      });
}

TEST(XmlPropertyList, TruncationAtAnyLengthIsRefused) {
  const std::string document =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + Dtd +
      "\n<plist version=\"1.0\">\n<dict>\n\t<key>a</key>\n\t<array>\n\t\t<integer>1</integer>\n\t\t"
      "<string>&lt;<![CDATA[b]]><!-- c --></string>\n\t\t<true/>\n\t</array>\n</dict>\n</plist>";
  ASSERT_EQ(ErrorOf(Parse(document)), "");
  for (std::size_t size = 0; size < document.size(); ++size) {
    EXPECT_NE(ErrorOf(Parse(Truncated(document, size))), "") << size;
  }
}

TEST(XmlPropertyList, StringThatNeedsNoDecodingViewsTheSource) {
  const std::string_view document = "<string>plain</string>";
  Arena arena;
  const auto value = ParseXmlPropertyList({.text = document}, arena);
  ASSERT_EQ(ErrorOf(value), "");
  EXPECT_EQ(value->AsString()->data(), document.data() + 8);
}

TEST(XmlPropertyList, StringThatNeedsDecodingIsKeptInTheArena) {
  Arena arena;
  const auto value =
      ParseXmlPropertyList({.text = "<dict><key>a&amp;b</key><string>c&amp;d</string>"
                                    "<key>e&amp;f</key><data>Zm9v</data></dict>"},
                           arena);
  ASSERT_EQ(ErrorOf(value), "");
  EXPECT_EQ(*value, PropertyValue(Dict({{"a&b", "c&d"}, {"e&f", Bytes("foo")}})));
}

TEST(XmlPropertyList, EqualKeysAreOneView) {
  const auto value = Parse(
      "<array><dict><key>a</key><true/><key>b&amp;c</key><true/></dict>"
      "<dict><key>b&amp;c</key><true/><key>a</key><true/></dict></array>");
  ASSERT_EQ(ErrorOf(value), "");
  const Array array = *value->AsArray();
  const auto first = array[0].AsDictionary()->Entries();
  const auto second = array[1].AsDictionary()->Entries();
  EXPECT_EQ(second[1].key, "a");
  EXPECT_EQ(second[1].key.data(), first[0].key.data());
  EXPECT_EQ(second[0].key, "b&c");
  EXPECT_EQ(second[0].key.data(), first[1].key.data());
}

// More keys than are remembered, and some that replace each other.
TEST(XmlPropertyList, KeysOfManyDictionariesAreDistinguished) {
  std::string document = "<array>";
  std::vector<PropertyValue> expected;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 1000; ++i) {
      const auto key = testing::Kept("key" + std::to_string(i));
      document += "<dict><key>" + std::string(key) + "</key><true/></dict>";
      expected.push_back(Dict({{key, true}}));
    }
  }
  ExpectAccepted(Parse, {{document + "</array>", List(expected)}});
}

TEST(XmlPropertyList, EntriesOfNestedDictionariesDoNotMix) {
  ExpectAccepted(Parse,
                 {{"<dict><key>a</key><true/><key>b</key><dict><key>a</key><false/></dict>"
                   "<key>a</key><array><dict><key>b</key><true/></dict></array></dict>",
                   Dict({{"a", List({Dict({{"b", true}})})}, {"b", Dict({{"a", false}})}})}});
}

}  // namespace
}  // namespace fernwick
