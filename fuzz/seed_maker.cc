// Makes what the fuzz targets begin with out of the project itself: OUTPUT/seeds/TARGET/ and the
// dictionary OUTPUT/TARGET.dict.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/packed_run.h"
#include "fuzz/sample_values.h"
#include "testing/binary_property_list_writer.h"
#include "testing/files.h"
#include "value/property_list_reader.h"
#include "value/property_list_writer.h"

namespace fernwick::fuzz {
namespace {

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;

// The words of a dictionary of the fuzzing engine, each once.
using Words = std::set<std::string>;

// The files below `directory` whose names end so.
Texts FilesBelow(const fs::path& directory, std::string_view ending) {
  std::set<fs::path> paths;
  for (const auto& file : fs::recursive_directory_iterator(directory)) {
    if (file.is_regular_file() && file.path().string().ends_with(ending)) paths.insert(file.path());
  }
  Texts texts;
  for (const auto& path : paths) texts.push_back(testing::ReadFile(path));
  return texts;
}

Texts FilesOfProject(const fs::path& source, std::string_view ending) {
  auto texts = FilesBelow(source / "examples", ending);
  for (auto& text : FilesBelow(source / "golden", ending)) texts.push_back(std::move(text));
  return texts;
}

std::vector<PropertyValue> ValuesOf(const Texts& files) {
  std::vector<PropertyValue> values;
  for (const auto& file : files) {
    if (auto value = ReadPropertyList(file).value) values.push_back(*std::move(value));
  }
  return values;
}

// ASCII as UTF-16 with a byte-order mark.
std::string AsUtf16(std::string_view ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes.append({c, '\0'});
  return bytes;
}

// What an XML document may say and the writer never does.
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
      AsUtf16("{ \"a\" = (b); }"),
  };
}

class SeedMaker {
 public:
  explicit SeedMaker(fs::path output) : output_(std::move(output)) {}

  void Add(std::string_view target, const Texts& seeds) {
    const auto directory = output_ / "seeds" / target;
    fs::create_directories(directory);
    for (const auto& seed : seeds) {
      // Named after the contents, so that a seed that is made again takes its own place.
      std::ofstream(directory / std::to_string(std::hash<std::string>()(seed)), std::ios::binary)
          << seed;
    }
  }

  void AddWords(std::string_view target, const Words& words) {
    std::ofstream dictionary(output_ / (std::string(target) + ".dict"));
    for (const auto& word : words) dictionary << '"' << Escaped(word) << "\"\n";
  }

 private:
  static std::string Escaped(std::string_view word) {
    std::string escaped;
    for (const char byte : word) {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02X", byte & 0xFF);
      const bool isPlain = byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\';
      escaped += isPlain ? std::string(1, byte) : code;
    }
    return escaped;
  }

  fs::path output_;
};

template <typename Write>
Texts Written(const std::vector<PropertyValue>& values, Write write) {
  Texts texts;
  for (const auto& value : values) texts.push_back(write(value));
  return texts;
}

Texts operator+(Texts a, const Texts& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Words operator+(Words a, const Words& b) {
  a.insert(b.begin(), b.end());
  return a;
}

// The tags of an XML document, and what else of markup stands between "<" and ">" in it.
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
  for (const auto& sample : samples) words = words + MarkupOf(WriteXmlPropertyList(sample));
  return words;
}

Words TextWords() {
  return {"\\U",   "\\a", "\\n",          "\\101",    "\\\"",
          "\\'",   "/*",  "*/",           "//",       "\\Ud83d\\Ude00",
          "<*I5>", " = ", "; ",           "( ",       " )",
          "{ ",    " }",  "\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"};
}

// Every marker that can begin an object, and the file's own.
Words BinaryWords() {
  Words words{"bplist00", std::string(6, '\0') + "\1\1", std::string(7, '\0') + '\1'};
  for (int kind = 0; kind < 16; ++kind) {
    for (const int size : {0, 1, 2, 3, 4, 0xF}) {
      words.insert(std::string(1, static_cast<char>(kind << 4 | size)));
    }
  }
  for (const char width : {'\x10', '\x11', '\x12', '\x13'}) words.insert({'\x5F', width});
  return words;
}

// As XML, but without anything around the value.
std::string WriteBareXml(const PropertyValue& value) {
  auto document = WriteXmlPropertyList(value);
  document.resize(document.rfind("</plist>"));
  return document.substr(document.find('\n', document.find("<plist")) + 1);
}

void MakeReaderSeeds(SeedMaker& maker, const Texts& files) {
  const auto samples = SampleValues();
  const auto values = ValuesOf(files);
  const auto xml = Written(samples, WriteXmlPropertyList) + Written(samples, WriteBareXml) +
                   XmlOddities() + files;
  const auto binary = Written(samples, testing::WriteBinaryPropertyList) +
                      Written(values, testing::WriteBinaryPropertyList);
  const auto text =
      Written(samples, WriteTextForm) + Written(values, WriteTextForm) + TextOddities();
  maker.Add("xml", xml);
  maker.Add("binary", binary);
  maker.Add("text", text);
  maker.Add("reader", xml + binary + text);
  maker.AddWords("xml", XmlWords(samples));
  maker.AddWords("binary", BinaryWords());
  maker.AddWords("text", TextWords());
  maker.AddWords("reader", XmlWords(samples) + BinaryWords() + TextWords());
}

// Every key, and every string that is short enough to be a word.
void AddWordsOf(const PropertyValue& value, Words& words) {
  constexpr std::size_t LongestWord = 32;
  const auto text = value.AsString();
  if (text && !text->empty() && text->size() <= LongestWord) words.insert(std::string(*text));
  if (const auto* array = value.AsArray()) {
    for (const auto& element : *array) AddWordsOf(element, words);
  }
  if (const auto* dictionary = value.AsDictionary()) {
    for (const auto& entry : dictionary->Entries()) {
      words.insert(std::string(entry.key.View()));
      AddWordsOf(entry.value, words);
    }
  }
}

Words WordsOf(const std::vector<PropertyValue>& values) {
  Words words;
  for (const auto& value : values) AddWordsOf(value, words);
  words.erase("");
  return words;
}

void MakeRecordingSeeds(SeedMaker& maker, const Texts& recordings) {
  const auto values = ValuesOf(recordings);
  maker.Add("recording", Written(values, WriteXmlPropertyList));
  maker.Add("recording", Written(values, testing::WriteBinaryPropertyList));
  maker.AddWords("recording", WordsOf(values));
}

// Every computer with every configuration: which board it is of, the target does not mind.
void MakeRunSeeds(SeedMaker& maker, const Texts& recordings, const Texts& configurations) {
  constexpr std::string_view CommandLines[] = {"-p @", "-p @ --bypassVersion", "-v -X -s -p@/",
                                               "--payload=@", ""};
  const auto computers = ValuesOf(recordings);
  Texts seeds;
  for (const auto& computer : computers) {
    const auto recording = WriteXmlPropertyList(computer);
    for (const auto& configuration : configurations) {
      const auto options = CommandLines[seeds.size() % std::size(CommandLines)];
      seeds.push_back(Pack({options, recording, configuration}));
    }
  }
  // A configuration may be binary; a recording ends at its first zero byte.
  for (const auto& configuration : ValuesOf(configurations)) {
    seeds.push_back(Pack({CommandLines[0], WriteXmlPropertyList(computers.front()),
                          testing::WriteBinaryPropertyList(configuration)}));
  }
  maker.Add("run", seeds);
  maker.AddWords("run", WordsOf(computers) + WordsOf(ValuesOf(configurations)));
}

void MakeSwitchSeeds(SeedMaker& maker) {
  using namespace std::string_literals;
  const std::string usbc = "fernwick_bypass_usbc_updates";
  const std::string version = "fernwick_bypassversioncheck";
  maker.Add("bypass_switch", {"-v " + usbc + "=1", version + "=0  a=b " + usbc + "=", usbc,
                              version + "=1 " + version + "=0\0t0"s, "\0t1"s, "\0d0\0"s,
                              "a\0d\xC3\xA9"s, usbc + "=0=1\0d\xFF"s, "\0n"s, "\0b"s, "\0a1"s});
  maker.AddWords("bypass_switch", {usbc, version, usbc + "=", version + "=", "=0", " "});
}

void MakeSeeds(const fs::path& source, const fs::path& output) {
  SeedMaker maker(output);
  const auto recordings = FilesOfProject(source, ".registry.plist");
  const auto configurations = FilesOfProject(source, "/Config.plist");
  MakeReaderSeeds(maker, recordings + configurations);
  MakeRecordingSeeds(maker, recordings);
  MakeSwitchSeeds(maker);
  MakeRunSeeds(maker, recordings, configurations);
}

}  // namespace
}  // namespace fernwick::fuzz

int main(int argc, char* argv[]) {
  if (argc != 3) {
    std::fputs("usage: seed_maker SOURCE-DIRECTORY OUTPUT-DIRECTORY\n", stderr);
    return 64;
  }
  fernwick::fuzz::MakeSeeds(argv[1], argv[2]);
}
