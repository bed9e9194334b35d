#include "value/xml/plain.h"

#include <gtest/gtest.h>

#include <string>

namespace fernwick {
namespace {

// The result of `function` for the text, which must not depend on what follows it in memory.
template <typename Function>
void ExpectWhateverFollows(const std::string& text, Function function) {
  for (const char after : {'\0', ' ', '\t', '<', '>', '/', 'a', 'z', '!', '?'}) {
    const auto memory = text + after;
    SCOPED_TRACE(::testing::PrintToString(memory));
    function(std::string_view(memory).substr(0, text.size()));
  }
}

TEST(PlainXml, WhiteSpaceIsAllThatComesFirst) {
  const std::string spaces[] = {"", " ", "\t", "\r", "\n", " \t\r\n ", std::string(20, ' ')};
  for (const auto& space : spaces) {
    ExpectWhateverFollows(space + "x \n", [&](std::string_view text) {
      EXPECT_EQ(XmlWhiteSpaceLength(text), space.size());
    });
  }
  for (const char c : {'\v', '\f', '\0', '<', 'x', '\xA0'}) {
    EXPECT_EQ(XmlWhiteSpaceLength(std::string(1, c)), 0) << c;
  }
}

TEST(PlainXml, WhiteSpaceEndsWithTheText) {
  for (const char first : {' ', '\n'}) {
    for (std::size_t tabs = 0; tabs < 40; ++tabs) {
      const auto space = first + std::string(tabs, '\t');
      EXPECT_EQ(XmlWhiteSpaceLength((space + "\t\n ").substr(0, space.size())), space.size());
      EXPECT_EQ(XmlWhiteSpaceLength(std::string_view(space + "\t").substr(0, space.size())),
                space.size());
    }
  }
}

TEST(PlainXml, ATagIsNeitherCommentNorInstruction) {
  for (const char* tag : {"<a", "</", "<dict>", "</dict>", "<>", "<<", "< "}) {
    EXPECT_TRUE(BeginsWithXmlTag(tag)) << tag;
  }
  for (const std::string other : {"", "<", "a", "a<b", " <a", "<!", "<?", "<!-- -->", "<?xml ?>"}) {
    ExpectWhateverFollows(other,
                          [](std::string_view text) { EXPECT_FALSE(BeginsWithXmlTag(text)); });
  }
}

TEST(PlainXml, AStartTagIsItsName) {
  for (const std::string name : {"a", "z", "dict", "abcdefghijklmnopqrstuvwxyz"}) {
    ExpectWhateverFollows('<' + name + '>', [&](std::string_view text) {
      EXPECT_EQ(PlainXmlStartTagName(text), name);
      EXPECT_EQ(PlainXmlStartTagName(std::string(text) + "x</y>"), name);
    });
  }
}

TEST(PlainXml, AStartTagThatIsNotPlainIsNone) {
  for (const std::string other :
       {"<>", "</a>", "<a/>", "<a >", "< a>", "<a b=\"c\">", "<A>", "<a1>", "<a-b>", "<a:b>", "<`>",
        "<{>", "<\xC3\xA9>", "<a\n", "<a="}) {
    ExpectWhateverFollows(other,
                          [](std::string_view text) { EXPECT_EQ(PlainXmlStartTagName(text), ""); });
  }
}

TEST(PlainXml, AStartTagThatIsCutShortIsNone) {
  constexpr std::string_view Whole = "<dict>";
  for (std::size_t size = 1; size < Whole.size(); ++size) {
    EXPECT_EQ(PlainXmlStartTagName(Whole.substr(0, size)), "");
  }
}

TEST(PlainXml, AnEndTagIsThatOfTheElement) {
  for (const std::string name : {"a", "dict", "string"}) {
    const auto tag = "</" + name + ">";
    ExpectWhateverFollows(tag, [&](std::string_view text) {
      EXPECT_EQ(PlainXmlEndTagLength(text, name), tag.size());
      EXPECT_EQ(PlainXmlEndTagLength(std::string(text) + "</x>", name), tag.size());
    });
  }
}

TEST(PlainXml, AnEndTagThatIsNotPlainIsNone) {
  for (const std::string other :
       {"", "<", "</", "</d", "</dict", "</dic>", "</dict >", "</ dict>", "</dicta>", "</DICT>",
        "<dict>", "/dict>", " </dict>", "x/dict>", "<xdict>", "</>", "</dict/>", "</dict?"}) {
    const auto expectNone = [](std::string_view text) {
      EXPECT_EQ(PlainXmlEndTagLength(text, "dict"), 0);
    };
    ExpectWhateverFollows(other, expectNone);
  }
}

TEST(PlainXml, CharactersEndWhereOneMayMeanSomethingElse) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool ends = c == '<' || c == '&' || c == '\r' || c == ']';
    const auto text = std::string("ab") + c + "d<";
    EXPECT_EQ(PlainXmlCharacters(text), ends ? "ab" : text.substr(0, 4)) << byte;
  }
}

TEST(PlainXml, CharactersEndWithTheText) {
  for (const std::string characters : {"", "a", "a\n > b"}) {
    ExpectWhateverFollows(characters, [&](std::string_view text) {
      EXPECT_EQ(PlainXmlCharacters(text), characters);
    });
  }
}

}  // namespace
}  // namespace fernwick
