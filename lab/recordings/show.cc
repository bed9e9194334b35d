#include <optional>
#include <string>

#include "lab/recordings/recording_file.h"
#include "lab/recordings/shown_computer.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints the registry of a recorded computer, or of this one, as a tree, with the controllers "
    "marked, and both inventories as the tool sees them.";

constexpr char Example[] = "Example:\n  fernwick-lab show desk.registry.plist --plane IOService\n";

}  // namespace

VerbEnd ShowVerb(int argumentCount, char* const arguments[]) {
  ComputerOperand operand;
  std::optional<std::string> plane;
  bool asJson = false;
  const CommandLine line = {.verb = "show",
                            .description = Description,
                            .footer = Example,
                            .arguments = {
                                RecordingArgument(operand),
                                HostArgument(operand),
                                {.name = "--plane",
                                 .target = &plane,
                                 .help = "print only this plane",
                                 .valueName = "PLANE"},
                                {.name = "--json", .target = &asJson, .help = "print JSON"},
                            }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto recording = LoadComputer(operand);
  if (!recording) return PrintError(operand.Name(), recording.Error());
  if (plane && !recording->planes.contains(*plane)) {
    PrintError(operand.Name() + ": there is no plane \"" + *plane + "\"");
    return LabStatus::BadUsage;
  }
  const auto computer = Inspect(*recording);
  ProcessConsole console;
  const TextSink sink = [&](std::string_view text) { console.Write(text); };
  asJson ? PrintComputerJson(computer, plane, sink) : PrintComputerText(computer, plane, sink);
  return FinishOutput(console);
}

}  // namespace fernwick::lab
