#include <string>
#include <string_view>
#include <vector>

#include "driver/options.h"
#include "driver/run.h"
#include "lab/recordings/recording_file.h"
#include "lab/support/messages.h"
#include "lab/support/spelling.h"
#include "lab/verbs.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {
namespace {

// The tool's own command line, under its own name.
std::vector<char*> ToolArguments(std::string& toolName, int argumentCount,
                                 char* const arguments[]) {
  std::vector<char*> vector{toolName.data()};
  vector.insert(vector.end(), arguments, arguments + argumentCount);
  vector.push_back(nullptr);
  return vector;
}

// What is wrong with the first argument; empty when nothing is.
std::string OperandError(int argumentCount, std::string_view first) {
  if (argumentCount == 0) return "RECORDING or --host is required";
  if (!first.starts_with('-') || first == "-" || first == "--host") return "";
  constexpr std::string_view Known[] = {"--host", "--help"};
  return "there is no option \"" + std::string(first) + "\" before RECORDING" +
         SuggestionFor(first, Known);
}

constexpr char ReplayHelp[] =
    "Runs the tool, unchanged, over a recorded computer, or over this one.\n"
    "Usage: fernwick-lab replay RECORDING|--host [TOOL-ARGUMENT...]\n"
    "\n"
    "Everything after RECORDING is the tool's own command line; standard output, standard error\n"
    "and exit status are the tool's own. RECORDING may be -, standard input. When the recording\n"
    "is not well formed, nothing runs and the status is 65; 66 when it cannot be read.\n"
    "\n"
    "  --host      the computer that this runs on, in place of RECORDING\n"
    "\n"
    "Example:\n"
    "  fernwick-lab replay desk.registry.plist -v -p payload\n";

}  // namespace

VerbEnd ReplayVerb(int argumentCount, char* const arguments[]) {
  const std::string_view first = argumentCount == 0 ? "" : arguments[0];
  if (first == "-h" || first == "--help") return PrintResult(ReplayHelp);
  const auto error = OperandError(argumentCount, first);
  if (!error.empty()) {
    PrintError(error + "; see fernwick-lab replay --help");
    return LabStatus::BadUsage;
  }
  const ComputerOperand computer = {.recording = arguments[0], .isHost = first == "--host"};
  const auto recording = LoadComputer(computer);
  if (!recording) return PrintError(computer.Name(), recording.Error());
  std::string toolName = "fernwick";
  const auto vector = ToolArguments(toolName, argumentCount - 1, arguments + 1);
  const auto options = ParseOptions(argumentCount, vector.data());
  RecordedRegistry registry(*recording);
  ProcessConsole console;
  const auto result = Run(options, registry, console);
  VerbEnd end = result.status;
  end.fault = result.fault;
  return end;
}

}  // namespace fernwick::lab
