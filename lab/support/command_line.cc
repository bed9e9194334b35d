#include "lab/support/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "lab/support/messages.h"

// Nothing else includes CLI11, which makes objects before main in every file that does.

namespace fernwick::lab {
namespace {

CLI::Option* AddTo(CLI::App& app, const Argument& argument, bool* target) {
  return app.add_flag(argument.name, *target, argument.help);
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, const BoundedNumber& target) {
  return app.add_option(argument.name, *target.number, argument.help)
      ->type_name(argument.valueName)
      ->check(CLI::Range(target.least, target.greatest));
}

CLI::Option* AddTo(CLI::App& app, const Argument& argument, std::vector<std::string>* target) {
  auto* option =
      app.add_option(argument.name, *target, argument.help)->type_name(argument.valueName);
  // An option that may be repeated takes one value at a time.
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

void Declare(CLI::App& app, const CommandLine& line) {
  app.footer(line.footer);
  for (const auto& argument : line.arguments) {
    const auto add = [&](const auto& target) { return AddTo(app, argument, target); };
    std::visit(add, argument.target)->required(argument.least > 0);
  }
}

}  // namespace

std::optional<int> ParseCommandLine(const CommandLine& line, int argumentCount,
                                    char* const arguments[]) {
  CLI::App app(line.description, "fernwick-lab " + line.verb);
  Declare(app, line);
  std::vector<std::string> words(arguments, arguments + argumentCount);
  std::reverse(words.begin(), words.end());  // the parser takes them from the end
  try {
    app.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    return PrintResult(app.help());
  } catch (const CLI::ParseError& error) {
    PrintError(std::string(error.what()) + "; see " + app.get_name() + " --help");
    return LabStatus::BadUsage;
  }
  return std::nullopt;
}

}  // namespace fernwick::lab
