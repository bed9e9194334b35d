// Reads a property list once, as a process does that is started for it, and prints the time and
// memory of that: memory left by earlier reads would help one reader and not another.
//
// usage: reading_bench readers
//          The name of each reader, a tab and the forms that it reads; then what is left out, as
//          its package is missing, with nothing after the tab.
//        reading_bench make DIRECTORY MEGABYTES
//          Writes the documents there, as "configuration of 1 MB, XML".
//        reading_bench read READER FILE
//          Seconds of processor time, a space, and bytes of memory beyond the file itself.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "bench/documents.h"
#include "bench/readers.h"
#include "platform/file_system.h"

namespace fernwick::bench {
namespace {

// The most that this process has had in memory so far, in bytes.
double HighWaterMark() {
  constexpr std::string_view Label = "VmHWM:";
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(Label)) return std::strtod(line.c_str() + Label.size(), nullptr) * 1024;
  }
  return 0;
}

bool PrintReaders() {
  for (const auto& reader : Readers()) {
    std::cout << reader.name << '\t' << (reader.readsXml ? "XML " : "")
              << (reader.readsBinary ? "binary" : "") << '\n';
  }
  for (const auto missing : MissingReaders()) std::cout << missing << "\t\n";
  return true;
}

bool Write(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  return static_cast<bool>(file.flush());
}

bool MakeDocuments(const std::string& directory, std::size_t megabytes) {
  return std::ranges::all_of(DocumentsOf(megabytes), [&](const Document& document) {
    const auto path = directory + '/' + document.name;
    return Write(path + ", XML", document.xml) && Write(path + ", binary", document.binary);
  });
}

bool Read(std::string_view name, const std::string& path) {
  const auto reader = std::ranges::find(Readers(), name, &Reader::name);
  auto file = ReadWholeFile(path);
  if (reader == Readers().end() || !file) return false;
  const double before = HighWaterMark();
  const double seconds = reader->secondsToRead(*std::move(file));
  std::cout << seconds << ' ' << HighWaterMark() - before << '\n';
  return true;
}

bool Run(std::span<const char* const> words) {
  const std::string_view verb = words.empty() ? "" : words[0];
  if (verb == "readers" && words.size() == 1) return PrintReaders();
  if (words.size() != 3) return false;
  if (verb == "make") return MakeDocuments(words[1], std::strtoul(words[2], nullptr, 10));
  return verb == "read" && Read(words[1], words[2]);
}

}  // namespace
}  // namespace fernwick::bench

int main(int argc, char** argv) {
  const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
  if (fernwick::bench::Run(words.subspan(1))) return EXIT_SUCCESS;
  std::cerr << "reading_bench: see the head of its source\n";
  return EXIT_FAILURE;
}
