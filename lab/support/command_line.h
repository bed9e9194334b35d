#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace fernwick::lab {

/// A number within bounds, both inclusive.
struct BoundedNumber {
  std::size_t* number;
  std::size_t least;
  std::size_t greatest;
};

/// What an argument of a verb is read into, which has to outlive the parsing; it stays as it is
/// where the argument is not given. A boolean is an option without a value, a vector takes as many
/// values as come.
using ArgumentTarget = std::variant<bool*, std::string*, std::optional<std::string>*,
                                    std::vector<std::string>*, BoundedNumber>;

/// One argument of a verb: an operand, or an option when its name begins with "-".
struct Argument {
  std::string name;  // "RECORDING", "--json" or "-p,--payload"
  ArgumentTarget target;
  std::string help;
  int least = 0;                          // so many values the verb cannot do without
  std::string valueName = "TEXT";         // for the help
  std::vector<std::string> choices = {};  // the only values that are taken; empty: any
};

/// What may stand behind a verb, and what is told of it.
struct CommandLine {
  std::string verb;
  std::string description;
  std::string footer;
  std::vector<Argument> arguments;
};

/// Parses what stands behind the verb. Returns nothing when it is to go on, and otherwise the
/// process's exit status: after the help that --help asks for on standard output, or one line on
/// standard error that says what is wrong (LabStatus::BadUsage).
std::optional<int> ParseCommandLine(const CommandLine& line, int argumentCount,
                                    char* const arguments[]);

}  // namespace fernwick::lab
