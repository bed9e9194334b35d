#pragma once

#include <optional>
#include <string>

namespace fernwick {

/// What the command line asks for.
struct Options {
  bool accepted = true;  // false: the parser rejected it
  bool verbose = false;
  bool bypassVersionCheck = false;
  // The last payload argument, "/", "Fernwick" and "/"; absent without one and when it is not
  // UTF-8.
  std::optional<std::string> personalitiesDirectory = std::nullopt;
  std::string diagnostic = {};  // the lines of the parser for standard error, when it rejected it
};

/// Parses the options with the standard long-option parser, in their order, up to the first that it
/// rejects; what came before that one applies. Operands are ignored. Prints nothing. May be called
/// any number of times in a process, while there is one thread: the parser has global state and
/// writes to `stderr`, which is redirected meanwhile. REQUIRES: arguments[argumentCount] is null.
Options ParseOptions(int argumentCount, char* const arguments[]);

}  // namespace fernwick
