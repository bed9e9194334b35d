#pragma once

#include <optional>
#include <string>

namespace fernwick {

/// What the command line asks for.
struct Options {
  bool accepted = true;  // false: the parser rejected it, after telling so on standard error
  bool verbose = false;
  bool bypassVersionCheck = false;
  // The payload argument, "/", "Fernwick" and "/"; absent when none was given or the last one given
  // is not UTF-8.
  std::optional<std::string> personalitiesDirectory = std::nullopt;
};

/// Parses the options with the standard long-option parser, in their order, up to the first that it
/// rejects; what came before that one holds. Operands are ignored. May be called any number of
/// times in a process. REQUIRES: arguments[argumentCount] is null.
Options ParseOptions(int argumentCount, char* const arguments[]);

}  // namespace fernwick
