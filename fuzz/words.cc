#include "fuzz/words.h"

#include <cstddef>

#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

// The tags of an XML document, and what other markup is between "<" and ">" in it.
Words MarkupOf(const std::string& document) {
  Words words;
  std::size_t open = document.find('<');
  while (open != std::string::npos) {
    const auto close = document.find('>', open);
    if (close == std::string::npos) break;
    words.insert(document.substr(open, close + 1 - open));
    open = document.find('<', close);
  }
  return words;
}

void AddWordsOf(const PropertyValue& value, Words& words) {
  constexpr std::size_t MaxWordSize = 32;
  const auto text = value.AsString();
  if (text && !text->empty() && text->size() <= MaxWordSize) words.insert(std::string(*text));
  if (const auto array = value.AsArray()) {
    for (const auto& element : *array) AddWordsOf(element, words);
  }
  if (const auto dictionary = value.AsDictionary()) {
    for (const auto& entry : dictionary->Entries()) {
      words.insert(std::string(entry.key));
      AddWordsOf(entry.value, words);
    }
  }
}

}  // namespace

Words XmlWords(const std::vector<PropertyValue>& samples) {
  Words words{"<![CDATA[",
              "]]>",
              "<!--",
              "-->",
              "<?xml",
              "?>",
              "<!DOCTYPE plist",
              "&#x",
              "&#1",
              "&#13;",
              "&amp;",
              "&lt;",
              "&gt;",
              "&quot;",
              "&apos;",
              "encoding=\"ISO-8859-1\"",
              "encoding=\"US-ASCII\"",
              "encoding=\"UTF-8\"",
              "encoding=\"UTF-16\"",
              "standalone=\"yes\"",
              "PUBLIC \"",
              "SYSTEM \"",
              "\xEF\xBB\xBF",
              "\xFF\xFE",
              "\xFE\xFF",
              "infinity",
              "nan",
              "0x",
              "-",
              "2024-02-29T23:59:59Z"};
  for (const auto& sample : samples) words.merge(MarkupOf(WriteXmlPropertyList(sample)));
  return words;
}

Words TextWords() {
  return {"\\U",   "\\a", "\\n",          "\\101",    "\\\"",
          "\\'",   "/*",  "*/",           "//",       "\\Ud83d\\Ude00",
          "<*I5>", " = ", "; ",           "( ",       " )",
          "{ ",    " }",  "\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"};
}

Words BinaryWords() {
  Words words{"bplist00", std::string(6, '\0') + "\1\1", std::string(7, '\0') + '\1'};
  // Every marker that can begin an object.
  for (int kind = 0; kind < 16; ++kind) {
    for (const int size : {0, 1, 2, 3, 4, 0xF}) {
      words.insert(std::string(1, static_cast<char>(kind << 4 | size)));
    }
  }
  for (const char width : {'\x10', '\x11', '\x12', '\x13'}) words.insert({'\x5F', width});
  return words;
}

Words WordsIn(const std::vector<PropertyValue>& values) {
  Words words;
  for (const auto& value : values) AddWordsOf(value, words);
  words.erase("");
  return words;
}

}  // namespace fernwick::fuzz
