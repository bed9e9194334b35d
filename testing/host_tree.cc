#include "testing/host_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "platform/file_system.h"
#include "value/unicode/ascii.h"

namespace fernwick::testing {
namespace {

constexpr std::size_t BlanksOfLevel = 2;

std::string Unescaped(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const bool isHex = text.starts_with("\\x") && text.size() >= 4 && HexDigitValue(text[2]) >= 0 &&
                       HexDigitValue(text[3]) >= 0;
    std::size_t length = 2;
    if (isHex) {
      bytes.push_back(static_cast<char>(HexDigitValue(text[2]) << 4 | HexDigitValue(text[3])));
      length = 4;
    } else if (text.starts_with("\\n")) {
      bytes.push_back('\n');
    } else if (text.starts_with("\\\\")) {
      bytes.push_back('\\');
    } else {
      bytes.push_back(text.front());
      length = 1;
    }
    text.remove_prefix(length);
  }
  return bytes;
}

struct Line {
  std::string_view path;
  std::string_view sign;      // how the entry is described: one of Signs
  std::string_view contents;  // what follows the sign
};

constexpr std::string_view Signs[] = {" = ", " : ", " -> ", " |", "/"};

// The sign that comes first counts; one at the end of the line needs no blank after it.
Line ParseLine(std::string_view text) {
  Line line = {text, "/", ""};
  for (const auto sign : Signs) {
    const auto bare = sign.substr(0, sign.find_last_not_of(' ') + 1);
    const bool endsLine = sign == " |" || sign == "/";
    std::size_t at = endsLine ? std::string_view::npos : text.find(sign);
    if (at == std::string_view::npos && text.ends_with(bare)) at = text.size() - bare.size();
    if (at >= line.path.size()) continue;
    line = {text.substr(0, at), sign, text.substr(std::min(at + sign.size(), text.size()))};
  }
  return line;
}

std::vector<std::string> StepsOf(std::string_view path) {
  std::vector<std::string> steps;
  while (!path.empty()) {
    const auto step = path.substr(0, path.find('/'));
    steps.push_back(Unescaped(step));
    path.remove_prefix(std::min(step.size() + 1, path.size()));
  }
  return steps;
}

// Whether the step is the name of an entry of the directory. An escape sequence can be any byte, a
// slash too.
bool IsName(const std::string& step) {
  using namespace std::string_view_literals;
  return !step.empty() && step != "." && step != ".." &&
         step.find_first_of("/\0"sv) == std::string::npos;
}

// The directory at the end of the steps, created where it is missing. Negative where it cannot be.
Descriptor MakeDirectories(const std::string& root, const std::vector<std::string>& steps) {
  int directory = open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  for (const auto& step : steps) {
    const Descriptor above(directory);
    if (!IsName(step)) return Descriptor(-1);
    mkdirat(above.Number(), step.c_str(), 0755);  // which may exist
    directory = openat(above.Number(), step.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }
  return Descriptor(directory);
}

bool WriteNewFile(int directory, const char* name, const std::string& bytes) {
  constexpr int Flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const Descriptor file(openat(directory, name, Flags, 0644));
  const auto size = static_cast<ssize_t>(bytes.size());
  return file.Number() >= 0 && write(file.Number(), bytes.data(), bytes.size()) == size;
}

// The entry of the line, at the steps from the root.
bool Create(const Line& line, std::vector<std::string> steps, const std::string& root) {
  if (line.sign == "/") return MakeDirectories(root, steps).Number() >= 0;
  if (steps.empty() || !IsName(steps.back())) return false;
  const auto name = steps.back();
  steps.pop_back();
  const auto directory = MakeDirectories(root, steps);
  const auto contents = Unescaped(line.contents);
  if (line.sign == " -> ") {
    return symlinkat(contents.c_str(), directory.Number(), name.c_str()) == 0;
  }
  if (line.sign == " |") return mkfifoat(directory.Number(), name.c_str(), 0644) == 0;
  return WriteNewFile(directory.Number(), name.c_str(),
                      contents + (line.sign == " = " ? "\n" : ""));
}

}  // namespace

std::string UnfoldTree(std::string_view description, const std::string& directory) {
  std::string failed;
  std::vector<std::vector<std::string>> levels;  // the steps of the directory of each indentation
  while (!description.empty()) {
    auto text = description.substr(0, description.find('\n'));
    const auto whole = text;
    description.remove_prefix(std::min(text.size() + 1, description.size()));
    const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
    text.remove_prefix(blanks);
    if (text.empty() || text.starts_with('#')) continue;
    levels.resize(std::min(levels.size(), blanks / BlanksOfLevel));
    auto steps = levels.empty() ? std::vector<std::string>() : levels.back();
    const auto line = ParseLine(text);
    for (auto& step : StepsOf(line.path)) steps.push_back(std::move(step));
    const bool isCreated = Create(line, steps, directory);
    if (!isCreated && failed.empty()) failed = whole;
    levels.push_back(std::move(steps));
  }
  return failed;
}

HostTree::HostTree(std::string_view description) {
  for (const auto text : {std::string_view("proc/\nsys/\n"), description}) {
    const auto failed = UnfoldTree(text, Root());
    if (failed.empty()) continue;
    std::fprintf(stderr, "%s: cannot be created: %s\n", Root().c_str(), failed.c_str());
    std::abort();
  }
}

}  // namespace fernwick::testing
