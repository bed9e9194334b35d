#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "lab/explain/explanation.h"
#include "lab/explain/print.h"
#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints which personality of a payload matches which controller of a recorded computer, or of "
    "this one, and, for every other pair, why not: all requirements that fail, near misses first.";

constexpr char Example[] =
    "Example:\n"
    "  fernwick-lab explain desk.registry.plist -p payload\n"
    "  fernwick-lab explain --host -p payload\n";

// What is wrong with a directory; empty when nothing is.
std::string DirectoryFault(const std::string& path) {
  const int directory = open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (directory < 0) return std::strerror(errno);
  close(directory);
  return {};
}

bool ShowsEmphasis() {
  const char* plain = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (plain == nullptr || *plain == '\0');
}

}  // namespace

VerbEnd ExplainVerb(int argumentCount, char* const arguments[]) {
  ComputerOperand computer;
  std::string payload;
  bool bypassVersion = false;
  bool asJson = false;
  const CommandLine line = {
      .verb = "explain",
      .description = Description,
      .footer = Example,
      .arguments = {
          RecordingArgument(computer),
          HostArgument(computer),
          {.name = "-p,--payload",
           .target = &payload,
           .help = "the payload directory",
           .least = 1,
           .valueName = "PAYLOAD"},
          {.name = "--bypassVersion", .target = &bypassVersion, .help = "as the tool's option"},
          {.name = "--json", .target = &asJson, .help = "print JSON"},
      }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto recording = LoadComputer(computer);
  if (!recording) return PrintError(computer.Name(), recording.Error());
  if (const auto fault = DirectoryFault(payload); !fault.empty()) {
    return PrintError(payload, {{fault}, LabStatus::UnreadableInput});
  }
  const auto explanation = Explain(*recording, ToolOptions(payload, bypassVersion));
  ProcessConsole console;
  const auto print = [&](std::string_view text) { console.Write(text); };
  asJson ? PrintExplanationJson(explanation, print)
         : PrintExplanationText(explanation, ShowsEmphasis(), print);
  const int status = FinishOutput(console);
  if (status != LabStatus::Done || !explanation.configurationError) return status;
  return PrintError(*explanation.configurationPath, *explanation.configurationError);
}

}  // namespace fernwick::lab
