#include "fuzz/sample_documents.h"

#include <string_view>

#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

// ASCII as UTF-16 with a byte-order mark.
std::string AsUtf16(std::string_view ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes.append({c, '\0'});
  return bytes;
}

}  // namespace

Texts XmlOddities() {
  return {
      "<?xml version='1.0' encoding=\"ISO-8859-1\" standalone='yes'?>\n<string>\xE9</string>",
      "<?xml version=\"1.0\" encoding=\"US-ASCII\"?><!DOCTYPE plist PUBLIC \"-//A//B\" "
      "\"file.dtd\"><plist version='1.0'><true/></plist>",
      "\xEF\xBB\xBF <!-- comment --><?target data?><array><false/><true></true></array>\n",
      "<string>&lt;&gt;&amp;&quot;&apos;&#65;&#13;&#x1F600;<![CDATA[<a>]]></string>",
      "<plist><dict><key>a</key><integer>-0x7F</integer><key>a</key><real>-Infinity</real>"
      "<key>b</key><data> Zm\n9v </data><key>c</key><date>2024-02-29T00:00:00Z</date></dict>"
      "</plist>",
      AsUtf16("<array><string a='b'>c</string></array>"),
  };
}

Texts TextOddities() {
  return {
      "// line\n{ a = b; 'c d' = \"\\n\\t\\101\\U00e9\\\\\"; /* block */ e = <0f bD 7>; }",
      "a = (1, 2, (x/y.z-w:$_)); b = {};",
      "(\"\\Ud83d\\Ude00\", '\"', <>,)",
      "('\u00E9\U0001F600\uFFFD', \"\u0100\x7F\")",
      AsUtf16("{ \"a\" = (b); }"),
  };
}

std::string WriteBareXml(const PropertyValue& value) {
  auto document = WriteXmlPropertyList(value);
  document.resize(document.rfind("</plist>"));
  return document.substr(document.find('\n', document.find("<plist")) + 1);
}

}  // namespace fernwick::fuzz
