#include "testing/programs/manual_page.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

namespace fernwick::testing {
namespace {

constexpr std::pair<std::string_view, std::string_view> Escapes[] = {
    {"\\-", "-"}, {"\\e", "\\"}, {"\\&", ""}, {"\\(aq", "'"}, {"\\(ga", "`"}, {"\\(ti", "~"},
};

bool EndsParagraph(std::string_view line) {
  return line == ".Pp" || line == ".El" || line.starts_with(".It ") || line.starts_with(".S");
}

}  // namespace

std::vector<ManualItem> ItemsOf(const std::filesystem::path& page) {
  std::vector<ManualItem> items;
  std::string section;
  bool inParagraph = false;
  std::ifstream lines(page);
  for (std::string line; std::getline(lines, line);) {
    if (EndsParagraph(line)) inParagraph = false;
    if (line.starts_with(".Sh ") || line.starts_with(".Ss ")) section = line.substr(4);
    if (line.starts_with(".It ")) {
      items.push_back({section, line.substr(4), ""});
      inParagraph = true;
    } else if (inParagraph) {
      auto& paragraph = items.back().paragraph;
      paragraph.append(paragraph.empty() ? "" : " ").append(line);
    }
  }
  return items;
}

std::vector<std::string> OptionsIn(std::string_view heading) {
  std::vector<std::string> options;
  std::istringstream words{std::string(heading)};
  std::string word;
  words >> word;
  if (word != "Fl") return options;
  while (words >> word && word != "Ar") {
    if (word != ",") options.push_back("-" + word);
  }
  return options;
}

std::string WithoutEscapes(std::string_view line) {
  std::string text;
  while (!line.empty()) {
    const auto* escape = std::ranges::find_if(
        Escapes, [line](const auto& each) { return line.starts_with(each.first); });
    if (escape == std::end(Escapes)) {
      text += line.front();
      line.remove_prefix(1);
    } else {
      text += escape->second;
      line.remove_prefix(escape->first.size());
    }
  }
  return text;
}

std::vector<std::filesystem::path> ManualPages(const std::filesystem::path& root) {
  std::vector<std::filesystem::path> pages;
  for (const auto& file : std::filesystem::directory_iterator(root / "man")) {
    pages.push_back(file.path());
  }
  std::ranges::sort(pages);
  return pages;
}

}  // namespace fernwick::testing
