#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace fernwick::lab {

/// A number within bounds, both inclusive.
struct BoundedNumber {
  std::size_t* number;
  std::size_t min;
  std::size_t max;
};

/// A percentage from 0 to 100 with at most one decimal, stored in tenths of a percent.
struct Percentage {
  std::optional<std::size_t>* tenths;
};

/// The variable that an argument of a verb is stored in, which must outlive the parsing and is
/// unchanged when the argument is absent. A boolean is an option without a value, a vector accepts
/// any number of values.
using ArgumentTarget = std::variant<bool*, std::string*, std::optional<std::string>*,
                                    std::vector<std::string>*, BoundedNumber, Percentage>;

/// One argument of a verb: an operand, or an option when its name begins with "-".
struct Argument {
  std::string name;  // "RECORDING", "--json" or "-p,--payload"
  ArgumentTarget target;
  std::string help;
  int minCount = 0;                       // of the values that the verb needs
  std::string valueName = "TEXT";         // for the help
  std::vector<std::string> choices = {};  // the only values that are accepted; empty: any
  // An operand that this option replaces: exactly one of the two is needed. The operand is declared
  // as one that is not needed.
  std::string replaces = {};
};

/// -p: the payload directory, which the verb needs.
Argument PayloadArgument(std::string& payload);

/// --bypassVersion, the tool's option. `help` may say more.
Argument BypassVersionArgument(bool& bypassVersion, std::string help = "as the tool's own");

/// The arguments that a verb accepts, and the text of its help around their descriptions.
struct CommandLine {
  std::string verb;
  std::string description;
  std::string footer;
  std::vector<Argument> arguments;
};

/// Parses the arguments after the verb. Returns nullopt when the verb can go on. Otherwise returns
/// the process's exit status, having printed the help on standard output (-h, --help) or one line
/// on standard error that says what is wrong (LabStatus::BadUsage): first of all an option that
/// does not exist, with the most similar one.
std::optional<int> ParseCommandLine(const CommandLine& line, int argumentCount,
                                    char* const arguments[]);

/// What is between the commas of an option's value: "" has one empty word.
std::vector<std::string_view> WordsOf(std::string_view list);

}  // namespace fernwick::lab
