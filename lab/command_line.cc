#include "lab/command_line.h"

#include <string>
#include <vector>

#include "lab/exit_status.h"
#include "lab/messages.h"

namespace fernwick::lab {

std::optional<int> ParseCommandLine(CLI::App& app, int argumentCount, char* const arguments[]) {
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
