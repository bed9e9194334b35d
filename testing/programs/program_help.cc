#include "testing/programs/program_help.h"

#include <regex>
#include <sstream>
#include <string_view>
#include <vector>

#include "testing/programs/child_process.h"

namespace fernwick::testing {
namespace {

constexpr std::string_view Letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

std::string HelpOf(std::vector<std::string> command) {
  command.emplace_back("--help");
  return RunChild(command, "/").standardOutput;
}

std::set<std::string> OptionsInHelp(const std::string& help) {
  static const std::regex option(R"(^  (-\w)?,?(--[\w-]+)?)");
  std::set<std::string> options;
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (!std::regex_search(line, match, option)) continue;
    options.insert(match[1].str());
    options.insert(match[2].str());
  }
  for (const char* other : {"", "-h", "--help"}) options.erase(other);
  return options;
}

// The option parser's message for an option that is ambiguous or misused names whole options in
// quotes.
void AddNamesIn(const std::string& diagnostic, const std::string& given,
                std::set<std::string>& names) {
  static const std::regex quoted(R"('(--[\w-]+)')");
  for (std::sregex_iterator match(diagnostic.begin(), diagnostic.end(), quoted), end; match != end;
       ++match) {
    if ((*match)[1] != given) names.insert((*match)[1]);
  }
}

}  // namespace

std::map<std::string, std::set<std::string>> VerbsAndOptions(const std::string& labProgram) {
  static const std::regex verb(R"(^  (\w+) )");
  std::map<std::string, std::set<std::string>> verbs;
  std::istringstream lines(HelpOf({labProgram}));
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (!std::regex_search(line, match, verb)) continue;
    verbs[match[1]] = OptionsInHelp(HelpOf({labProgram, match[1]}));
  }
  return verbs;
}

std::map<std::string, std::set<std::string>> ChoicesOf(const std::string& labProgram,
                                                       const std::string& verb) {
  static const std::regex choice(R"((--[\w-]+) \w+:\{([\w,]+)\})");
  static const std::regex word(R"(\w+)");
  std::map<std::string, std::set<std::string>> choices;
  const auto help = HelpOf({labProgram, verb});
  for (std::sregex_iterator match(help.begin(), help.end(), choice), end; match != end; ++match) {
    const auto words = (*match)[2].str();
    for (std::sregex_iterator each(words.begin(), words.end(), word); each != end; ++each) {
      choices[(*match)[1]].insert(each->str());
    }
  }
  return choices;
}

std::set<std::string> OptionsOfTool(const std::string& program) {
  std::set<std::string> options;
  for (const char letter : Letters) {
    const std::string shortForm = {'-', letter};
    const auto tried = RunChild({program, shortForm}, "/");
    if (tried.standardError.find("invalid option") == std::string::npos) options.insert(shortForm);
    // With a value where none is allowed, and without one where it is needed.
    for (const char* value : {"=1", ""}) {
      const auto given = "-" + shortForm;
      AddNamesIn(RunChild({program, given + value}, "/").standardError, given, options);
    }
  }
  return options;
}

}  // namespace fernwick::testing
