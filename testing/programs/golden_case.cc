#include "testing/programs/golden_case.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include "testing/files.h"

namespace fernwick::testing {
namespace {

constexpr std::string_view Prompt = "$ ";
constexpr std::string_view SectionMark = "---";
constexpr std::string_view StatusMark = "--- status ";
constexpr std::string_view NoNewlineAtEnd = "\\ No newline at end\n";

// The words of a command line, without the quotes.
std::vector<std::string> SplitWords(std::string_view line) {
  std::vector<std::string> words;
  bool isQuoted = false;
  bool isInWord = false;
  for (const char character : line) {
    const bool isBlank = character == ' ' && !isQuoted;
    if (!isBlank && !isInWord) words.emplace_back();
    isInWord = !isBlank;
    if (character == '\'') {
      isQuoted = !isQuoted;
    } else if (!isBlank) {
      words.back() += character;
    }
  }
  EXPECT_FALSE(isQuoted) << "there is no closing quote in: " << line;
  return words;
}

std::vector<std::string> ArgumentsIn(std::string_view commandLine) {
  auto words = SplitWords(commandLine);
  if (words.empty() || words.front() != "fernwick-lab") {
    ADD_FAILURE() << "not a command of fernwick-lab: " << commandLine;
    return {};
  }
  words.erase(words.begin());
  return words;
}

// Reads past the sections of a command, if there are any. In them, only a heading begins with the
// mark.
void SkipSections(std::istream& lines) {
  if (lines.peek() != SectionMark.front()) return;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(StatusMark)) return;
  }
  ADD_FAILURE() << "the sections do not end with a status";
}

void AppendSection(std::string_view name, std::string_view output, std::string& sections) {
  if (output.empty()) return;
  sections.append(SectionMark).append(" ").append(name).append("\n");
  while (!output.empty()) {
    const auto end = output.find('\n');
    if (output.starts_with(SectionMark) || output.starts_with('\\')) sections += '\\';
    sections.append(output.substr(0, end)).append("\n");
    if (end == std::string_view::npos) {
      sections += NoNewlineAtEnd;
      return;
    }
    output.remove_prefix(end + 1);
  }
}

}  // namespace

GoldenCase ReadGoldenCase(const std::filesystem::path& file) {
  SCOPED_TRACE(file);
  GoldenCase described{.name = file.stem().string(), .commands = {}};
  std::istringstream lines(ReadFile(file));
  std::string head;
  for (std::string line; std::getline(lines, line);) {
    head += line + "\n";
    if (line.starts_with(Prompt)) {
      const auto arguments = ArgumentsIn(line.substr(Prompt.size()));
      described.commands.push_back({std::exchange(head, ""), arguments});
      SkipSections(lines);
    } else {
      EXPECT_TRUE(line.empty() || line.starts_with('#')) << "what is this line? " << line;
    }
  }
  EXPECT_EQ(head, "") << "no command follows the comment";
  EXPECT_FALSE(described.commands.empty()) << "there is no command";
  return described;
}

std::vector<GoldenCase> ReadGoldenCases(const std::filesystem::path& directory) {
  std::vector<GoldenCase> cases;
  for (const auto& file : std::filesystem::directory_iterator(directory)) {
    if (file.path().extension() == ".txt") cases.push_back(ReadGoldenCase(file.path()));
  }
  std::ranges::sort(cases, {}, &GoldenCase::name);
  return cases;
}

std::string FormatSections(const ChildOutcome& outcome) {
  std::string sections;
  AppendSection("stdout", outcome.standardOutput, sections);
  AppendSection("stderr", outcome.standardError, sections);
  return sections.append(StatusMark).append(outcome.status).append("\n");
}

std::vector<GoldenReplay> ReadGoldenReplays(const std::filesystem::path& directory) {
  std::vector<GoldenReplay> replays;
  for (const auto& described : ReadGoldenCases(directory)) {
    for (const auto& [head, arguments] : described.commands) {
      if (arguments.size() < 2 || arguments[0] != "replay") continue;
      replays.push_back({described.name, arguments[1], {arguments.begin() + 2, arguments.end()}});
    }
  }
  return replays;
}

}  // namespace fernwick::testing
