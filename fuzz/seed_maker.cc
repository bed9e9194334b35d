// Makes what the fuzz targets begin with from the project itself: OUTPUT/seeds/TARGET/ and the
// dictionary OUTPUT/TARGET.dict.

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/packed_run.h"
#include "fuzz/sample_documents.h"
#include "fuzz/sample_values.h"
#include "fuzz/text_form.h"
#include "fuzz/words.h"
#include "testing/files.h"
#include "value/binary/writer.h"
#include "value/property_list_reader.h"
#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

namespace fs = std::filesystem;

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

// Those of the files that can be read. They live as long as the process.
std::vector<PropertyValue> ValuesOf(const Texts& files) {
  static std::deque<PropertyList> lists;
  std::vector<PropertyValue> values;
  for (const auto& file : files) {
    auto reading = ReadPropertyList(file);
    if (reading.list) values.push_back(lists.emplace_back(*std::move(reading.list)).value);
  }
  return values;
}

class SeedMaker {
 public:
  explicit SeedMaker(fs::path output) : output_(std::move(output)) {}

  void Add(std::string_view target, const Texts& seeds) {
    const auto directory = output_ / "seeds" / target;
    fs::create_directories(directory);
    for (const auto& seed : seeds) {
      // Named after the contents, so that a seed that is made again replaces itself.
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

// The one of its overloads that returns the text.
std::string WriteXml(const PropertyValue& value) {
  return WriteXmlPropertyList(value);
}

// The elements of all containers, in one.
template <typename Container>
Container Joined(std::initializer_list<Container> parts) {
  Container joined;
  for (const auto& part : parts) {
    for (const auto& element : part) joined.insert(joined.end(), element);
  }
  return joined;
}

void MakeReaderSeeds(SeedMaker& maker, const Texts& files) {
  const auto samples = SampleValues();
  const auto values = ValuesOf(files);
  const auto xml =
      Joined({Written(samples, WriteXml), Written(samples, WriteBareXml), XmlOddities(), files});
  const auto binary =
      Joined({Written(samples, WriteBinaryPropertyList), Written(values, WriteBinaryPropertyList)});
  const auto text =
      Joined({Written(samples, WriteTextForm), Written(values, WriteTextForm), TextOddities()});
  maker.Add("xml", xml);
  maker.Add("binary", binary);
  maker.Add("text", text);
  maker.Add("reader", Joined({xml, binary, text}));
  maker.AddWords("xml", XmlWords(samples));
  maker.AddWords("binary", BinaryWords());
  maker.AddWords("text", TextWords());
  maker.AddWords("reader", Joined({XmlWords(samples), BinaryWords(), TextWords()}));
}

void MakeRecordingSeeds(SeedMaker& maker, const Texts& recordings) {
  auto values = ValuesOf(recordings);
  values.push_back(SampleRecording());
  maker.Add("recording", Written(values, WriteXml));
  maker.Add("recording", Written(values, WriteBinaryPropertyList));
  maker.AddWords("recording", WordsIn(values));
}

// Every computer with every configuration: the target does not depend on the board.
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
                          WriteBinaryPropertyList(configuration)}));
  }
  maker.Add("run", seeds);
  maker.AddWords("run", Joined({WordsIn(computers), WordsIn(ValuesOf(configurations))}));
}

// The computers of golden/hosts/, with a configuration for the board that most of them have.
void MakeHostSeeds(SeedMaker& maker, const fs::path& source) {
  const auto configuration =
      testing::ReadFile(source / "examples/payload/Fernwick/Zed-1A06/Config.plist");
  Texts seeds;
  for (const auto& host : FilesBelow(source / "golden/hosts", ".txt")) {
    // Before the commands.
    const auto files = host.substr(0, host.find("\n$ ") + 1);
    for (const auto& options : {"-v -p @", "-p @ --bypassVersion"}) {
      seeds.push_back(Pack({options, files, configuration}));
    }
  }
  maker.Add("host", seeds);
  maker.AddWords("host", {" -> ", " = ", " : ", " |", "0-0", "domain0", "unique_id", "board-id"});
}

void MakeSwitchSeeds(SeedMaker& maker) {
  using namespace std::string_literals;
  const std::string usbc = "fernwick_bypass_usbc_updates";
  const std::string version = "fernwick_bypassversioncheck";
  maker.Add("bypass_switch",
            {"-v " + usbc + "=1", version + "=0  a=b " + usbc + "=", usbc, usbc + "=1 " + usbc,
             version + "=0  " + version, version + "=1 " + version + "=0\0t0"s, "\0t1"s, "\0d0\0"s,
             "a\0d\xC3\xA9"s, usbc + "=0=1\0d\xFF"s, "\0n"s, "\0b"s, "\0a1"s});
  maker.AddWords("bypass_switch", {usbc, version, usbc + "=", version + "=", "=0", " "});
}

void MakeSeeds(const fs::path& source, const fs::path& output) {
  SeedMaker maker(output);
  const auto recordings = FilesOfProject(source, ".registry.plist");
  const auto configurations = FilesOfProject(source, "/Config.plist");
  MakeReaderSeeds(maker, Joined({recordings, configurations}));
  MakeRecordingSeeds(maker, recordings);
  MakeSwitchSeeds(maker);
  MakeHostSeeds(maker, source);
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
