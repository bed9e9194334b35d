#include "lab/support/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>
#include <system_error>
#include <utility>

#include "lab/support/messages.h"
#include "lab/support/spelling.h"

// The only file that includes CLI11, which constructs objects before main in every file that does.

namespace fernwick::lab {
namespace {

CLI::Option* AddTo(CLI::App& app, const Argument& argument, bool* target) {
  return app.add_flag(argument.name, *target, argument.help);
}

// An option whose value is the number that `parse` returns; empty is refused as not `wanted`.
// `hint` is for the help.
template <typename Parse>
CLI::Option* AddNumber(CLI::App& app, const Argument& argument, Parse parse,
                       const std::string& wanted, const std::string& hint,
                       std::function<void(std::size_t)> store) {
  const auto check = [=](const std::string& text) {
    return parse(text) ? "" : "\"" + text + "\" is not " + wanted;
  };
  const auto parseAndStore = [=](const std::string& text) { store(*parse(text)); };
  return app.add_option_function<std::string>(argument.name, parseAndStore, argument.help)
      ->type_name(argument.valueName)
      ->check(check, hint);
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, const BoundedNumber& target) {
  const auto min = std::to_string(target.min);
  const auto max = std::to_string(target.max);
  const auto parse = [=](const std::string& text) -> std::optional<std::size_t> {
    std::size_t number = 0;
    const auto* const end = text.data() + text.size();
    const auto [after, error] = std::from_chars(text.data(), end, number);
    const bool isNumber = error == std::errc() && after == end;
    const bool isWithin = target.min <= number && number <= target.max;
    return isNumber && isWithin ? std::optional(number) : std::nullopt;
  };
  return AddNumber(app, argument, parse, "a number from " + min + " to " + max,
                   "UINT in [" + min + " - " + max + "]",
                   [=](std::size_t number) { *target.number = number; });
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
  return AddNumber(app, argument, TenthsIn, "a number from 0 to 100 with at most one decimal",
                   "in [0.0 - 100.0]", [=](std::size_t tenths) { *target.tenths = tenths; });
}

// Has the option accept the choices alone.
void Restrict(CLI::Option* option, const std::vector<std::string>& choices) {
  std::string list;
  std::string hint;
  for (const auto& choice : choices) {
    list += (list.empty() ? "" : ", ") + choice;
    hint += (hint.empty() ? "{" : ",") + choice;
  }
  const auto check = [=](const std::string& text) {
    const bool isChoice = std::ranges::find(choices, text) != choices.end();
    return isChoice ? "" : "\"" + text + "\" is not one of " + list;
  };
  option->check(check, hint + "}");
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, std::vector<std::string>* target) {
  auto* option =
      app.add_option(argument.name, *target, argument.help)->type_name(argument.valueName);
  if (!argument.choices.empty()) Restrict(option, argument.choices);
  // An option that may be repeated has one value each time.
  if (argument.name.starts_with('-')) return option->allow_extra_args(false);
  return argument.minCount > 1 ? option->expected(argument.minCount, -1) : option;
}

template <typename Text>
CLI::Option* AddTo(CLI::App& app, const Argument& argument, Text* target) {
  auto* option =
      app.add_option(argument.name, *target, argument.help)->type_name(argument.valueName);
  if (argument.choices.empty()) return option;
  Restrict(option, argument.choices);
  return option->capture_default_str();
}

void Declare(CLI::App& app, const CommandLine& line) {
  app.footer(line.footer);
  for (const auto& argument : line.arguments) {
    const auto add = [&](const auto& target) { return AddTo(app, argument, target); };
    std::visit(add, argument.target)->required(argument.minCount > 0);
  }
}

// The names alone: nothing is required, and options accept any value, any number of times.
void DeclareNames(CLI::App& app, const CommandLine& line, std::vector<std::string>& values) {
  for (const auto& argument : line.arguments) {
    if (std::holds_alternative<bool*>(argument.target)) {
      app.add_flag(argument.name);
    } else if (argument.name.starts_with('-')) {
      app.add_option(argument.name, values)->allow_extra_args(false);
    }
  }
  app.allow_extras();
}

// The parser consumes its words from the end.
std::vector<std::string> Reversed(const std::vector<std::string>& words) {
  return {words.rbegin(), words.rend()};
}

// The first word that looks like an option and is none; empty when there is none, or when the last
// option lacks its value. The parser reports first what is missing or wrong, so the line is parsed
// again for the names alone.
std::string FindUnknownOption(const CommandLine& line, const std::vector<std::string>& words) {
  CLI::App app;
  std::vector<std::string> values;
  DeclareNames(app, line, values);
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

// The option that has several values but accepts one; empty when there is none.
std::string RepeatedOption(const CLI::App& app, const CommandLine& line) {
  for (const auto& argument : line.arguments) {
    const bool acceptsMany = std::holds_alternative<bool*>(argument.target) ||
                             std::holds_alternative<std::vector<std::string>*>(argument.target);
    const auto* const option = app.get_option(argument.name.substr(0, argument.name.find(',')));
    if (!acceptsMany && option->results().size() > 1) return option->get_name();
  }
  return {};
}

// The first operand that is one too many. REQUIRES: there is one.
std::string SurplusOperand(const CLI::App& app, const std::vector<std::string>& words) {
  const auto surplus = app.remaining();
  return *std::ranges::find_if(words, [&](const std::string& word) {
    return word != "--" && std::ranges::find(surplus, word) != surplus.end();
  });
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

// Why the parser refused the words.
std::string RefusalOf(const CLI::ParseError& error, const CLI::App& app, const CommandLine& line,
                      const std::vector<std::string>& words) {
  const auto unknown = FindUnknownOption(line, words);
  if (!unknown.empty()) return UnknownOptionMessage(app, unknown);
  const auto repeated = RepeatedOption(app, line);
  if (!repeated.empty()) return repeated + " can be used once";
  const bool hasSurplus = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  return hasSurplus ? "the operand \"" + SurplusOperand(app, words) + "\" is not expected"
                    : error.what();
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
    fault = RefusalOf(error, app, line, words);
  }
  if (fault.empty()) return std::nullopt;
  PrintError(fault + "; see " + app.get_name() + " --help");
  return LabStatus::BadUsage;
}

Argument PayloadArgument(std::string& payload) {
  return {.name = "-p,--payload",
          .target = &payload,
          .help = "the payload directory",
          .minCount = 1,
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
