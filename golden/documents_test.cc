// Runs the commands in the documents, which must print what the documents show. A document shows a
// command in a block fenced as "console", a manual page in a literal one: lines that begin with
// "$ " are run by the shell at the top of the source tree, with the built programs on the PATH;
// what follows each is what it prints, its standard error included, up to the next command. A last
// line "[status N]" is the exit status when it is not 0. Commands fenced as "console in a copy of
// examples" run in a directory that begins as one, the same for those of one document.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/programs/manual_page.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

const fs::path SourceDirectory = FERNWICK_SOURCE_DIRECTORY;

struct ShownCommand {
  std::string location;  // document and line
  std::string command;
  std::string output;
  fs::path document;
  bool inCopyOfExamples = false;
};

struct Markup {
  std::string_view blockStart;
  std::string_view blockEnd;
  std::string (*plainText)(std::string_view line);
};

constexpr char InCopyOfExamples[] = "```console in a copy of examples";

constexpr Markup Markdown = {"```console", "```",
                             [](std::string_view line) { return std::string(line); }};
constexpr Markup Mdoc = {".Bd -literal", ".Ed", testing::WithoutEscapes};

std::vector<ShownCommand> CommandsOf(const fs::path& document) {
  const auto& markup = document.extension() == ".md" ? Markdown : Mdoc;
  std::vector<ShownCommand> commands;
  std::ifstream lines(document);
  bool inBlock = false;
  bool inCopy = false;
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (line == markup.blockStart || line == InCopyOfExamples || line == markup.blockEnd) {
      inCopy = line == InCopyOfExamples;
      inBlock = inCopy || line == markup.blockStart;
    } else if (inBlock && line.starts_with("$ ")) {
      const auto location = document.filename().string() + ":" + std::to_string(number);
      commands.push_back({location, markup.plainText(line.substr(2)), "", document, inCopy});
    } else if (inBlock && !commands.empty()) {
      commands.back().output += markup.plainText(line) + "\n";
    }
  }
  return commands;
}

std::vector<fs::path> AllDocuments() {
  auto documents = testing::ManualPages(SourceDirectory);
  documents.push_back(SourceDirectory / "README.md");
  documents.push_back(SourceDirectory / "CONTRIBUTING.md");
  for (const auto& file : fs::directory_iterator(SourceDirectory / "docs")) {
    if (file.path().extension() == ".md") documents.push_back(file.path());
  }
  return documents;
}

std::vector<ShownCommand> AllCommands() {
  std::vector<ShownCommand> commands;
  for (const auto& document : AllDocuments()) {
    for (auto& command : CommandsOf(document)) commands.push_back(std::move(command));
  }
  return commands;
}

TEST(Documents, ShowWhatTheirCommandsPrint) {
  const auto commands = AllCommands();
  ASSERT_FALSE(commands.empty());
  const testing::TemporaryDirectory home;  // where GNU parallel writes
  const auto path = "PATH=\"" FERNWICK_BUILD_DIRECTORY ":$PATH\"; export PARALLEL_HOME='" +
                    home.Path() + "'; exec 2>&1; ";
  std::map<fs::path, testing::TemporaryDirectory> copies;  // by document
  for (const auto& [location, command, output, document, inCopy] : commands) {
    auto directory = SourceDirectory;
    if (inCopy) {
      const auto [copy, isNew] = copies.try_emplace(document);
      directory = copy->second.Path();
      if (isNew) fs::copy(SourceDirectory / "examples", directory, fs::copy_options::recursive);
    }
    const auto outcome = testing::RunChild({"/bin/sh", "-c", path + command}, directory.string());
    const auto status = outcome.status == "0" ? "" : "[status " + outcome.status + "]\n";
    EXPECT_EQ(outcome.standardOutput + status, output) << location;
  }
}

// The tests that a program lists, as "Suite.Name". Of a test with parameters, the program lists
// "Instance/Suite." and then "Name/Parameter", once for each parameter.
std::set<std::string> TestNamesOf(const std::string& program) {
  const auto outcome = testing::RunChild({program, "--gtest_list_tests"}, FERNWICK_BUILD_DIRECTORY);
  EXPECT_EQ(outcome.status, "0") << program << ": " << outcome.standardError;
  std::set<std::string> names;
  std::istringstream lines(outcome.standardOutput);
  std::string suite;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ")) {
      names.insert(suite + line.substr(2, line.find_first_of("/ ", 2) - 2));
    } else {
      suite = line.substr(line.rfind('/') + 1);
    }
  }
  return names;
}

// Those of every test program, and the golden cases by their names.
std::set<std::string> AllTestNames() {
  std::set<std::string> names;
  for (const std::string program : {FERNWICK_TEST_PROGRAMS}) names.merge(TestNamesOf(program));
  for (const auto& file : fs::directory_iterator(SourceDirectory / "golden/cases")) {
    names.insert(file.path().stem().string());
  }
  return names;
}

TEST(Documents, KnowTestsByWhatTheProgramsList) {
  const auto known = AllTestNames();
  for (const char* name : {"Documents.KnowTestsByWhatTheProgramsList", "Golden.RunsAsExpected",
                           "no-arguments", "GoldenCaseFile.OfAnotherFormFails"}) {
    EXPECT_TRUE(known.contains(name)) << name;
  }
}

TEST(Documents, NameOnlyTestsThatExist) {
  const auto known = AllTestNames();
  const auto document = testing::ReadFile(SourceDirectory / "docs/deliberate.md");
  const std::regex row(R"(\| ([^|]*) \|\n)");  // the last cell of each row
  const std::regex name(R"(`([\w.-]+)`)");
  int count = 0;
  for (std::sregex_iterator cell(document.begin(), document.end(), row), end; cell != end; ++cell) {
    const auto tests = (*cell)[1].str();
    for (std::sregex_iterator test(tests.begin(), tests.end(), name); test != end; ++test) {
      EXPECT_TRUE(known.contains((*test)[1].str())) << (*test)[1].str();
      ++count;
    }
  }
  EXPECT_GT(count, 30);
}

TEST(Documents, ExplainHowToExtendByTestsThatExist) {
  const auto known = AllTestNames();
  const auto document = testing::ReadFile(SourceDirectory / "docs/extending.md");
  const std::regex test(R"(`([A-Z]\w+\.[A-Z]\w+)`)");
  int count = 0;
  for (std::sregex_iterator match(document.begin(), document.end(), test), end; match != end;
       ++match, ++count) {
    EXPECT_TRUE(known.contains((*match)[1].str())) << (*match)[1].str();
  }
  EXPECT_GT(count, 5);
}

// The files and folders of the repository, by their paths from its top. What begins with "." or
// "build" is made by a developer.
std::set<std::string> AllPaths() {
  std::set<std::string> paths;
  for (const auto& top : fs::directory_iterator(SourceDirectory)) {
    const auto name = top.path().filename().string();
    if (name.starts_with(".") || name.starts_with("build")) continue;
    paths.insert(name);
    if (!top.is_directory()) continue;
    for (const auto& file : fs::recursive_directory_iterator(top)) {
      paths.insert(fs::relative(file, SourceDirectory).string());
    }
  }
  return paths;
}

// The words in backticks without a placeholder: a blank, "*", or four capitals as in "NAME.cc".
std::vector<std::string> WordsInBackticks(const std::string& document) {
  const std::regex quoted(R"(`([^`\n]+)`)");
  const std::regex placeholder(R"([\s*]|[A-Z]{4})");
  std::vector<std::string> words;
  for (std::sregex_iterator match(document.begin(), document.end(), quoted), end; match != end;
       ++match) {
    const auto word = (*match)[1].str();
    if (!std::regex_search(word, placeholder)) words.push_back(word);
  }
  return words;
}

// A word with the suffix of a source file is the end of a path: a section about a folder leaves the
// folder out. Any other is a whole path if it begins with a folder of the repository and "/".
bool NamesNothing(const std::string& word, const std::set<std::string>& paths) {
  const auto path = word.ends_with('/') ? word.substr(0, word.size() - 1) : word;
  if (paths.contains(path)) return false;
  if (word.find('/') != word.npos && paths.contains(word.substr(0, word.find('/')))) return true;
  return std::regex_search(word, std::regex(R"(\w\.(h|cc|py|mjs)$)")) &&
         std::ranges::none_of(paths, [&](const auto& each) { return each.ends_with("/" + word); });
}

TEST(Documents, NameOnlyFilesThatExist) {
  const auto paths = AllPaths();
  EXPECT_FALSE(NamesNothing("documents_test.cc", paths));
  EXPECT_TRUE(NamesNothing("golden/no-such-folder/", paths));
  EXPECT_TRUE(NamesNothing("no_such_file.h", paths));
  for (const auto& document : AllDocuments()) {
    for (const auto& word : WordsInBackticks(testing::ReadFile(document))) {
      EXPECT_FALSE(NamesNothing(word, paths)) << document << ": " << word;
    }
  }
}

TEST(Documents, LinkOnlyToFilesThatExist) {
  const std::regex link(R"(\]\(([^)#:]+)[)#])");
  int count = 0;
  for (const auto& document : AllDocuments()) {
    const auto text = testing::ReadFile(document);
    for (std::sregex_iterator match(text.begin(), text.end(), link), end; match != end;
         ++match, ++count) {
      const auto target = (*match)[1].str();
      EXPECT_TRUE(fs::exists(document.parent_path() / target)) << document << ": " << target;
    }
  }
  EXPECT_GT(count, 30);
}

// All matches of the first group of `pattern`, each split into words.
std::set<std::string> WordsFound(const std::string& text, const std::regex& pattern) {
  const std::regex word(R"([a-z][\w.+-]*)");
  std::set<std::string> words;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    const auto found = (*match)[1].str();
    for (std::sregex_iterator each(found.begin(), found.end(), word); each != end; ++each) {
      words.insert(each->str());
    }
  }
  return words;
}

TEST(Documents, ExplainWhyDevInstallsEachPackage) {
  const auto readme = testing::ReadFile(SourceDirectory / "README.md");
  const auto start = readme.find("| Package | Why |");
  ASSERT_NE(start, std::string::npos);
  const auto table = readme.substr(start, readme.find("\n\n", start) - start);
  const auto named = WordsFound(table, std::regex(R"(\n\| (`[^|]*`) \| [^|]+ \|)"));
  const auto outcome = testing::RunChild({"./dev", "packages"}, SourceDirectory.string());
  std::istringstream listed(outcome.standardOutput);
  const std::set<std::string> installed(std::istream_iterator<std::string>(listed), {});
  EXPECT_EQ(outcome.status, "0");
  EXPECT_GT(installed.size(), 10U);
  EXPECT_EQ(named, installed);
}

// The demonstration, the first thing that a newcomer runs.
TEST(Dev, DemoShowsAPlanAndTheOtherComputers) {
  const auto outcome = testing::RunChild(
      {"/usr/bin/env", "FERNWICK_BUILD=" FERNWICK_BUILD_DIRECTORY, "./dev", "demo"},
      SourceDirectory.string());
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardOutput, testing::ReadFile(SourceDirectory / "golden/demo.stdout"));
}

TEST(Dev, WithoutACommandListsThem) {
  const auto outcome = testing::RunChild({"./dev"}, SourceDirectory.string());
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardOutput, testing::ReadFile(SourceDirectory / "golden/dev-usage.stdout"));
}

TEST(Dev, RefusesAnUnknownCommand) {
  EXPECT_EQ(testing::RunChild({"./dev", "tset"}, SourceDirectory.string()).status, "64");
}

}  // namespace
}  // namespace fernwick
