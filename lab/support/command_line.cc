#include "lab/support/command_line.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <string_view>

#include "lab/support/messages.h"
#include "lab/support/spelling.h"

// The only file that includes CLI11, which constructs objects before main in every file that does.

namespace fernwick::lab {
namespace {

CLI::Option* AddTo(CLI::App& app, const Argument& argument, bool* target) {
  return app.add_flag(argument.name, *target, argument.help);
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, const BoundedNumber& target) {
  return app.add_option(argument.name, *target.number, argument.help)
      ->type_name(argument.valueName)
      ->check(CLI::Range(target.min, target.max));
}

// "99.5" is 995. Empty for a text that is no such percentage.
std::optional<std::size_t> TenthsIn(std::string digits) {
  const auto size = digits.size();
  if (size > 1 && digits[size - 2] == '.') {
    digits.erase(size - 2, 1);
  } else {
    digits += '0';
  }
  std::size_t tenths = 0;
  const auto* const end = digits.data() + digits.size();
  const bool isNumber = std::from_chars(digits.data(), end, tenths).ptr == end;
  const bool isOfLength = digits.size() > 1 && digits.size() < 5;
  return isNumber && isOfLength && tenths <= 1000 ? std::optional(tenths) : std::nullopt;
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, const Percentage& target) {
  const auto check = [](const std::string& text) -> std::string {
    if (TenthsIn(text)) return "";
    return "\"" + text + "\" is not a number from 0 to 100 with at most one decimal";
  };
  const auto store = [=](const std::string& text) { *target.tenths = TenthsIn(text); };
  return app.add_option_function<std::string>(argument.name, store, argument.help)
      ->type_name(argument.valueName)
      ->check(check, "in [0.0 - 100.0]");
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, std::vector<std::string>* target) {
  auto* option =
      app.add_option(argument.name, *target, argument.help)->type_name(argument.valueName);
  if (!argument.choices.empty()) option->check(CLI::IsMember(argument.choices));
  // An option that may be repeated has one value each time.
  if (argument.name.starts_with('-')) return option->allow_extra_args(false);
  return argument.least > 1 ? option->expected(argument.least, -1) : option;
}

template <typename Text>
CLI::Option* AddTo(CLI::App& app, const Argument& argument, Text* target) {
  auto* option =
      app.add_option(argument.name, *target, argument.help)->type_name(argument.valueName);
  if (argument.choices.empty()) return option;
  return option->check(CLI::IsMember(argument.choices))->capture_default_str();
}

void Declare(CLI::App& app, const CommandLine& line, bool withRequired = true) {
  app.footer(line.footer);
  for (const auto& argument : line.arguments) {
    const auto add = [&](const auto& target) { return AddTo(app, argument, target); };
    std::visit(add, argument.target)->required(withRequired && argument.least > 0);
  }
}

// The parser consumes its words from the end.
std::vector<std::string> Reversed(const std::vector<std::string>& words) {
  return {words.rbegin(), words.rend()};
}

// The first word that looks like an option and is none; empty when there is none, or when another
// fault comes first. The parser reports what is missing before what is unknown, so the line is
// parsed again with nothing required. REQUIRES: the words were refused; what they are stored in is
// not used any more.
std::string FindUnknownOption(const CommandLine& line, const std::vector<std::string>& words) {
  CLI::App app;
  Declare(app, line, false);
  app.allow_extras();
  try {
    app.parse(Reversed(words));
  } catch (const CLI::ParseError&) {
    return {};
  }
  for (const auto& word : app.remaining()) {
    if (word == "--") break;
    if (word.size() > 1 && word.front() == '-') return word.substr(0, word.find('='));
  }
  return {};
}

std::string UnknownOptionMessage(const CLI::App& app, const std::string& unknown) {
  std::vector<std::string> names;
  for (const auto* option : app.get_options()) {
    for (const auto& name : option->get_lnames()) names.push_back("--" + name);
  }
  const std::vector<std::string_view> known(names.begin(), names.end());
  return "there is no option \"" + unknown + "\"" + SuggestionFor(unknown, known);
}

// What is wrong with an operand and the option that replaces it; empty when nothing is.
std::string ReplacementFault(const CLI::App& app, const CommandLine& line) {
  for (const auto& option : line.arguments) {
    if (option.replaces.empty()) continue;
    const bool hasOption = app.count(option.name) > 0;
    const bool hasOperand = app.count(option.replaces) > 0;
    if (hasOption && hasOperand) return option.name + " is used in place of " + option.replaces;
    if (!hasOption && !hasOperand) return option.replaces + " or " + option.name + " is required";
  }
  return {};
}

}  // namespace

std::optional<int> ParseCommandLine(const CommandLine& line, int argumentCount,
                                    char* const arguments[]) {
  CLI::App app(line.description, "fernwick-lab " + line.verb);
  Declare(app, line);
  const std::vector<std::string> words(arguments, arguments + argumentCount);
  std::string fault;
  try {
    app.parse(Reversed(words));
    fault = ReplacementFault(app, line);
  } catch (const CLI::CallForHelp&) {
    return PrintResult(app.help());
  } catch (const CLI::ParseError& error) {
    const auto unknown = FindUnknownOption(line, words);
    fault = unknown.empty() ? std::string(error.what()) : UnknownOptionMessage(app, unknown);
  }
  if (fault.empty()) return std::nullopt;
  PrintError(fault + "; see " + app.get_name() + " --help");
  return LabStatus::BadUsage;
}

Argument PayloadArgument(std::string& payload) {
  return {.name = "-p,--payload",
          .target = &payload,
          .help = "the payload directory",
          .least = 1,
          .valueName = "PAYLOAD"};
}

Argument BypassVersionArgument(bool& bypassVersion, std::string help) {
  return {.name = "--bypassVersion", .target = &bypassVersion, .help = std::move(help)};
}

std::vector<std::string_view> WordsOf(std::string_view list) {
  std::vector<std::string_view> words;
  while (true) {
    const auto word = list.substr(0, list.find(','));
    words.push_back(word);
    if (word.size() == list.size()) return words;
    list.remove_prefix(word.size() + 1);
  }
}

}  // namespace fernwick::lab
