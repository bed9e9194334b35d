#include "value/xml/cursor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/inputs/corruption.h"

namespace fernwick {
namespace {

using testing::Repeated;

struct FaultRow {
  std::string document;
  std::size_t offset;
  std::string message;
};

// Bytes after the document in memory, which must not be read.
constexpr std::string_view BytesAfter = " >/?-='\";a]<";

// Checks that `operate`, on a cursor over each document, reports the fault of its row.
template <typename Operate>
void ExpectFaults(const std::vector<FaultRow>& rows, Operate operate) {
  for (const auto& [document, offset, message] : rows) {
    for (const char after : BytesAfter) {
      const auto memory = document + after;
      SCOPED_TRACE(::testing::PrintToString(memory));
      XmlCursor cursor(std::string_view(memory).substr(0, document.size()));
      EXPECT_FALSE(operate(cursor));
      EXPECT_EQ(cursor.Fault().Message(), message);
      EXPECT_EQ(cursor.Fault().Offset(), offset);
    }
  }
}

// Checks that `operate` consumes each text and nothing of the "<end>" after it.
template <typename Operate>
void ExpectConsumesWhole(const std::vector<std::string>& texts, Operate operate) {
  for (const auto& text : texts) {
    SCOPED_TRACE(::testing::PrintToString(text));
    const auto document = text + "<end>";
    XmlCursor cursor(document);
    EXPECT_TRUE(operate(cursor));
    EXPECT_EQ(cursor.Fault().Message(), "");
    EXPECT_EQ(cursor.Offset(), text.size());
  }
}

bool SkipProlog(XmlCursor& cursor) {
  return cursor.SkipProlog();
}

bool SkipMiscellany(XmlCursor& cursor) {
  return cursor.SkipMiscellany();
}

bool ReadStartTag(XmlCursor& cursor) {
  XmlStartTag tag;
  return cursor.ReadStartTag(tag);
}

bool ReadEndTagOfDict(XmlCursor& cursor) {
  return cursor.ReadEndTag("dict");
}

bool ReadCharacters(XmlCursor& cursor) {
  std::string_view characters;
  std::string decoded;
  return cursor.ReadCharacters(characters, decoded);
}

TEST(XmlCursor, SkipsTheProlog) {
  ExpectConsumesWhole(
      {
          "",
          " \t\r\n",
          "<?xml version='1.0'?>",
          "<?xml version='1.0'?>\n<!DOCTYPE plist>\n",
          "<!-- a --><?pi?><!DOCTYPE plist><!-- b --><?pi ?>",
          "<!DOCTYPE plist >",
          "<!DOCTYPE\nplist\tSYSTEM\r'a.dtd'\n>",
          "<!DOCTYPE plist SYSTEM \"\">",
          "<!DOCTYPE plist SYSTEM 'a \"quoted\" > [ name'>",
          "<!DOCTYPE plist PUBLIC \"-//A//B c 1.0//EN\" \"http://host/a.dtd\">",
          "<!DOCTYPE plist PUBLIC '' ''>",
          "<!DOCTYPE plist PUBLIC \"it's+(),./:=?;!*#@$_%\" 'a'>",
          "<!DOCTYPE plist PUBLIC 'azAZ09' 'a'>",
          "<!DOCTYPE SYSTEM>",
          "<!DOCTYPE PUBLIC SYSTEM 'a'>",
      },
      SkipProlog);
}

TEST(XmlCursor, RejectsAMalformedProlog) {
  const std::string malformed = "the document type declaration is malformed";
  ExpectFaults(
      {
          {"<?xml version='2.0'?>", 14, "the XML declaration is malformed"},
          {" <?xml version='1.0'?>", 1, "an XML declaration is allowed only at the very start"},
          {"<!-- --><?xml version='1.0'?>", 8,
           "an XML declaration is allowed only at the very start"},
          {"<!DOCTYPE", 0, malformed},
          {"<!DOCTYPEplist>", 0, malformed},
          {"<!DOCTYPE >", 10, "the name of the document type is missing"},
          {"<!DOCTYPE 9>", 10, "the name of the document type is missing"},
          {"<!DOCTYPE plist", 15, malformed},
          {"<!DOCTYPE plist 'a'>", 16, malformed},
          {"<!DOCTYPE plist system 'a'>", 16, malformed},
          {"<!DOCTYPE plist SYSTEM>", 22, malformed},
          {"<!DOCTYPE plist SYSTEM'a'>", 22, malformed},
          {"<!DOCTYPE plist SYSTEM a>", 23, "the system identifier is not quoted"},
          {"<!DOCTYPE plist SYSTEM 'a>", 23, "the system identifier does not end"},
          {"<!DOCTYPE plist SYSTEM 'a' 'b'>", 27, malformed},
          {"<!DOCTYPE plist PUBLIC>", 22, malformed},
          {"<!DOCTYPE plist PUBLIC >", 23, "the public identifier is not quoted"},
          {"<!DOCTYPE plist PUBLIC 'a'>", 26, malformed},
          {"<!DOCTYPE plist PUBLIC 'a''b'>", 26, malformed},
          {"<!DOCTYPE plist PUBLIC 'a' b>", 27, "the system identifier is not quoted"},
          {"<!DOCTYPE plist PUBLIC 'a", 23, "the public identifier does not end"},
          {"<!DOCTYPE plist PUBLIC 'a\tb' 'c'>", 23,
           "the public identifier contains a character that it must not"},
          {"<!DOCTYPE plist PUBLIC 'a<b' 'c'>", 23,
           "the public identifier contains a character that it must not"},
          {"<!DOCTYPE plist PUBLIC 'a{b' 'c'>", 23,
           "the public identifier contains a character that it must not"},
          {"<!DOCTYPE plist []>", 16,
           "a document type declaration with an internal subset is not accepted"},
          {"<!DOCTYPE plist[]>", 15,
           "a document type declaration with an internal subset is not accepted"},
          {"<!DOCTYPE plist SYSTEM 'a' [<!ENTITY b 'c'>]>", 27,
           "a document type declaration with an internal subset is not accepted"},
          {"<!DOCTYPE plist><!-- ", 16, "a comment does not end"},
      },
      SkipProlog);
}

TEST(XmlCursor, SecondDocumentTypeDeclarationIsLeftUnread) {
  XmlCursor cursor("<!DOCTYPE plist><!DOCTYPE plist>");
  EXPECT_TRUE(cursor.SkipProlog());
  EXPECT_EQ(cursor.Offset(), 16u);
}

TEST(XmlCursor, SkipsWhiteSpaceCommentsAndProcessingInstructions) {
  ExpectConsumesWhole(
      {
          "",
          "\n\t \r",
          "<!---->",
          "<!-- - > <a> & ]]> -->",
          "<!--a--><!--b-->",
          "<?a?>",
          "<?a ?>",
          "<?a b > ? <c> & -- ?>",
          "<?xml-stylesheet href='a'?>",
          "<?xmlx?>",
          "<?a\n\?\?>",
          " <!-- --> <?a?> <!-- --> ",
      },
      SkipMiscellany);
}

TEST(XmlCursor, SkipsIndentationOfAnyDepth) {
  std::vector<std::string> texts;
  for (std::size_t depth = 0; depth < 40; ++depth) {
    const std::string tabs(depth, '\t');
    for (const char* lineEnd : {"\n", "\r\n", "\r", " ", ""}) texts.push_back(lineEnd + tabs);
    texts.push_back("\n" + tabs + "\n" + tabs + " \t");
  }
  ExpectConsumesWhole(texts, SkipMiscellany);
}

TEST(XmlCursor, RejectsMalformedCommentsAndProcessingInstructions) {
  ExpectFaults(
      {
          {"<!--", 0, "a comment does not end"},
          {" <!-- -", 1, "a comment does not end"},
          {"<!-->", 0, "a comment does not end"},
          {"<!--->", 0, "a comment does not end"},
          {"<!-- a -- b -->", 7, "\"--\" is not allowed inside a comment"},
          {"<!-- a --->", 7, "\"--\" is not allowed inside a comment"},
          {"<!-- a --", 7, "\"--\" is not allowed inside a comment"},
          {"<?", 2, "the name of a processing instruction is missing"},
          {"<\?\?>", 2, "the name of a processing instruction is missing"},
          {"<? a?>", 2, "the name of a processing instruction is missing"},
          {"<?9?>", 2, "the name of a processing instruction is missing"},
          {"<?a", 3, "a processing instruction is malformed"},
          {"<?a>", 3, "a processing instruction is malformed"},
          {"<?a+b?>", 3, "a processing instruction is malformed"},
          {"<?a b>", 4, "a processing instruction does not end"},
          {"<?a ?", 4, "a processing instruction does not end"},
          {" <?xml ?>", 1, "an XML declaration is allowed only at the very start"},
          {"<?XML ?>", 0, "an XML declaration is allowed only at the very start"},
          {"<?xMl?>", 0, "an XML declaration is allowed only at the very start"},
      },
      SkipMiscellany);
}

struct StartTagRow {
  std::string text;
  std::string name;
  bool isEmptyElement;
};

TEST(XmlCursor, ReadsStartTags) {
  const StartTagRow rows[] = {
      {"<a>", "a", false},
      {"<a/>", "a", true},
      {"<a />", "a", true},
      {"<a\n>", "a", false},
      {"<dict:x-1>", "dict:x-1", false},
      {"<a b='c'>", "a", false},
      {"<a b=\"c\"/>", "a", true},
      {"<a b = 'c' >", "a", false},
      {"<a b=''\n\tc=''>", "a", false},
      {"<a b='\"' c=\"'\">", "a", false},
      {"<a b='>/>]]>'>", "a", false},
      {"<a b='&lt;&amp;&gt;&apos;&quot;&#60;&#x3C;'>", "a", false},
      {"<a b='1' B='1' c:b='1'>", "a", false},
      {"<a xmlns='u' xml:space='preserve'>", "a", false},
  };
  for (const auto& [text, name, isEmptyElement] : rows) {
    SCOPED_TRACE(text);
    const auto document = text + "<end>";
    XmlCursor cursor(document);
    XmlStartTag tag;
    EXPECT_TRUE(cursor.ReadStartTag(tag));
    EXPECT_EQ(tag.offset, 0u);
    EXPECT_EQ(tag.name, name);
    EXPECT_EQ(tag.isEmptyElement, isEmptyElement);
    EXPECT_EQ(cursor.Offset(), text.size());
    EXPECT_EQ(cursor.Fault().Message(), "");
  }
}

TEST(XmlCursor, RejectsMalformedStartTags) {
  ExpectFaults(
      {
          {"<", 1, "the name of an element is missing"},
          {"<>", 1, "the name of an element is missing"},
          {"< a>", 1, "the name of an element is missing"},
          {"<9>", 1, "the name of an element is missing"},
          {"<!a>", 1, "the name of an element is missing"},
          {"<![CDATA[]]>", 1, "the name of an element is missing"},
          {"<a", 0, "a start tag does not end"},
          {"<a b='c' ", 0, "a start tag does not end"},
          {"<a/", 2, "a start tag is malformed"},
          {"<a<b>", 2, "a start tag is malformed"},
          {"<a/ >", 2, "a start tag is malformed"},
          {"<a / >", 3, "the name of an attribute is missing"},
          {"<a 'b'>", 3, "the name of an attribute is missing"},
          {"<a =''>", 3, "the name of an attribute is missing"},
          {"<a b>", 4, "the attribute b has no value"},
          {"<a b", 4, "the attribute b has no value"},
          {"<a b />", 5, "the attribute b has no value"},
          {"<a b=>", 5, "the value of an attribute is not quoted"},
          {"<a b=c>", 5, "the value of an attribute is not quoted"},
          {"<a b=", 5, "the value of an attribute is not quoted"},
          {"<a b='c>", 5, "the value of an attribute does not end"},
          {"<a b='c\">", 5, "the value of an attribute does not end"},
          {"<a b='c'd='e'>", 8, "a start tag is malformed"},
          {"<a b='c<d'>", 7, "\"<\" is not allowed inside the value of an attribute"},
          {"<a b='&lt;<'>", 10, "\"<\" is not allowed inside the value of an attribute"},
          {"<a b='&'>", 6, "\"&\" does not begin a reference"},
          {"<a b='c & d'>", 8, "\"&\" does not begin a reference"},
          {"<a b='&amp' c=';'>", 6, "\"&\" does not begin a reference"},
          {"<a b='&c;'>", 6, "the entity &c; is not defined"},
          {"<a b='&amp;&#0;'>", 11, "&#0; is no character that XML can carry"},
          {"<a b='1' b='2'>", 0, "the attribute b occurs twice in one tag"},
          {"<a b='' c='' d='' c='' e=''/>", 0, "the attribute c occurs twice in one tag"},
          {"<a " + Repeated("b", 50) + "='' " + Repeated("b", 50) + "=''>", 0,
           "the attribute " + Repeated("b", 40) + "... occurs twice in one tag"},
      },
      ReadStartTag);
}

TEST(XmlCursor, ReadsEndTags) {
  ExpectConsumesWhole({"</dict>", "</dict >", "</dict\r\n\t>"}, ReadEndTagOfDict);
}

TEST(XmlCursor, RejectsOtherEndTags) {
  ExpectFaults(
      {
          {"", 0, "</dict> is missing"},
          {"text</dict>", 0, "</dict> is missing"},
          {"<dict>", 0, "</dict> is missing"},
          {"</", 2, "the name of an element is missing"},
          {"</>", 2, "the name of an element is missing"},
          {"</ dict>", 2, "the name of an element is missing"},
          {"</array>", 0, "</array> found where </dict> was expected"},
          {"</Dict>", 0, "</Dict> found where </dict> was expected"},
          {"</dic>", 0, "</dic> found where </dict> was expected"},
          {"</dict2>", 0, "</dict2> found where </dict> was expected"},
          {"</dict", 0, "an end tag is malformed"},
          {"</dict/>", 0, "an end tag is malformed"},
          {"</dict a=''>", 0, "an end tag is malformed"},
          {"</dict<", 0, "an end tag is malformed"},
          {"</" + Repeated("x", 50) + ">", 0,
           "</" + Repeated("x", 40) + "...> found where </dict> was expected"},
      },
      ReadEndTagOfDict);
}

struct CharactersRow {
  std::string text;
  std::string characters;
  bool viewsDocument;
};

TEST(XmlCursor, ReadsCharacterData) {
  const CharactersRow rows[] = {
      {"", "", true},
      {"plain text", "plain text", true},
      {" \t\n ", " \t\n ", true},
      {"> ' \"", "> ' \"", true},
      {"<!-- -->plain", "plain", true},
      {"plain<!-- -->", "plain", true},
      {"<?a?>plain<?b?>", "plain", true},
      {"a<!-- x -->b<?c?>d", "abd", false},
      {"&amp;&lt;&gt;&apos;&quot;", "&<>'\"", false},
      {"a&amp;lt;b", "a&lt;b", false},
      {"&#65;&#x41;&#x0041;&#000065;", "AAAA", false},
      {"&#x20AC;&#x20ac;", "\xE2\x82\xAC\xE2\x82\xAC", false},
      {"&#128512;&#x10FFFF;", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", false},
      {"&#9;&#10;&#13;", "\t\n\r", false},
      {"a\r\nb\rc\nd", "a\nb\nc\nd", false},
      {"\r\r\n\n", "\n\n\n", false},
      {"a\r", "a\n", false},
      {"a\r&#10;b", "a\n\nb", false},
      {"a&#13;\nb", "a\r\nb", false},
      {"a\r<!-- -->\nb", "a\n\nb", false},
      {"a\r\n", "a\n", false},
      {"]", "]", false},
      {"]]", "]]", false},
      {"]] >", "]] >", false},
      {"]>", "]>", false},
      {"]]&gt;", "]]>", false},
      {"&#93;]>", "]]>", false},
      {"]]<!-- -->>", "]]>", false},
      {"<![CDATA[]]>", "", false},
      {"<![CDATA[a]]>", "a", false},
      {"a<![CDATA[<b>&amp;&#65;]]>c", "a<b>&amp;&#65;c", false},
      {"<![CDATA[a\r\nb\rc]]>", "a\nb\nc", false},
      {"<![CDATA[]]]]><![CDATA[>]]>", "]]>", false},
      {"<![CDATA[<!-- -->]]>", "<!-- -->", false},
      {"<![CDATA[a]]]>", "a]", false},
  };
  for (const auto& [text, characters, viewsDocument] : rows) {
    SCOPED_TRACE(::testing::PrintToString(text));
    const auto document = text + "</end>";
    XmlCursor cursor(document);
    std::string_view found;
    std::string decoded = "left over";
    EXPECT_TRUE(cursor.ReadCharacters(found, decoded));
    EXPECT_EQ(found, characters);
    EXPECT_EQ(found.data() != decoded.data(), viewsDocument);
    EXPECT_EQ(cursor.Offset(), text.size());
    EXPECT_EQ(cursor.Fault().Message(), "");
  }
}

TEST(XmlCursor, RejectsMalformedCharacterData) {
  const std::string notReference = "\"&\" does not begin a reference";
  ExpectFaults(
      {
          {"a]]>b", 1, "\"]]>\" is not allowed in text"},
          {"]]]>", 1, "\"]]>\" is not allowed in text"},
          {"<![CDATA[]]>]]>", 12, "\"]]>\" is not allowed in text"},
          {"&", 0, notReference},
          {"a & b", 2, notReference},
          {"&amp", 0, notReference},
          {"&amp </a>", 0, notReference},
          {"&amp<a>;", 0, notReference},
          {"&amp&amp;", 0, notReference},
          {"a<!-- -->b&", 10, notReference},
          {"&;", 0, "the entity &; is not defined"},
          {"&AMP;", 0, "the entity &AMP; is not defined"},
          {"&nbsp;", 0, "the entity &nbsp; is not defined"},
          {"&" + Repeated("x", 50) + ";", 0,
           "the entity &" + Repeated("x", 40) + "...; is not defined"},
          {"&#;", 0, "&#; is no character that XML can carry"},
          {"&#x;", 0, "&#x; is no character that XML can carry"},
          {"&#X41;", 0, "&#X41; is no character that XML can carry"},
          {"&#4A;", 0, "&#4A; is no character that XML can carry"},
          {"&#xG;", 0, "&#xG; is no character that XML can carry"},
          {"&#-65;", 0, "&#-65; is no character that XML can carry"},
          {"&#+65;", 0, "&#+65; is no character that XML can carry"},
          {"&#0;", 0, "&#0; is no character that XML can carry"},
          {"&#8;", 0, "&#8; is no character that XML can carry"},
          {"&#x1F;", 0, "&#x1F; is no character that XML can carry"},
          {"&#xD800;", 0, "&#xD800; is no character that XML can carry"},
          {"&#57343;", 0, "&#57343; is no character that XML can carry"},
          {"&#xFFFE;", 0, "&#xFFFE; is no character that XML can carry"},
          {"&#xFFFF;", 0, "&#xFFFF; is no character that XML can carry"},
          {"&#x110000;", 0, "&#x110000; is no character that XML can carry"},
          {"&#4294967361;", 0, "&#4294967361; is no character that XML can carry"},
          {"&#18446744073709551681;", 0,
           "&#18446744073709551681; is no character that XML can carry"},
          {"a<![CDATA[b", 1, "a CDATA section does not end"},
          {"<![CDATA[ ]] >", 0, "a CDATA section does not end"},
          {"<!-- a", 0, "a comment does not end"},
          {"<?a b", 4, "a processing instruction does not end"},
          {"<?xml version='1.0'?>", 0, "an XML declaration is allowed only at the very start"},
      },
      ReadCharacters);
}

TEST(XmlCursor, CharacterDataEndsAtAnyTagAndAtTheEnd) {
  for (const std::string after : {"", "<a>", "</a>", "<![cdata[]]>", "<!x>"}) {
    const auto document = "text" + after;
    XmlCursor cursor(document);
    EXPECT_TRUE(ReadCharacters(cursor));
    EXPECT_EQ(cursor.Offset(), 4u) << after;
  }
}

TEST(XmlCursor, LineEndThatTheDocumentCutsInTwoIsOne) {
  XmlCursor cursor(std::string_view("a\r\n").substr(0, 2));
  std::string_view characters;
  std::string decoded;
  EXPECT_TRUE(cursor.ReadCharacters(characters, decoded));
  EXPECT_EQ(characters, "a\n");
}

TEST(XmlCursor, KeepsTheFirstFault) {
  XmlCursor cursor("");
  EXPECT_FALSE(cursor.Fail(3, "first"));
  EXPECT_FALSE(cursor.Fail(1, "second"));
  EXPECT_EQ(cursor.Fault().Offset(), 3u);
  EXPECT_EQ(cursor.Fault().Message(), "first");
}

}  // namespace
}  // namespace fernwick
