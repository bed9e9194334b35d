#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "lab/explain/explanation.h"
#include "lab/explain/print.h"
#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"
#include "lab/what_if/changed_computer.h"
#include "lab/what_if/changed_configurations.h"
#include "lab/what_if/changes.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints what the tool plans for a recorded computer, or for this one: which personality of a "
    "payload matches which controller and, for every other pair, why not: all requirements that "
    "fail, near misses first. Where a switch of the computer ends the run, also what happens "
    "without it.";

constexpr char Example[] =
    "Example:\n"
    "  fernwick-lab explain desk.registry.plist -p payload\n"
    "  fernwick-lab explain --host -p payload\n";

// Why a directory cannot be used; empty when it can.
std::optional<Error> DirectoryError(const std::string& path) {
  const int directory = open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (directory < 0) return SystemError();
  close(directory);
  return std::nullopt;
}

bool ShowsEmphasis() {
  const char* plain = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (plain == nullptr || *plain == '\0');
}

// The arguments of the verb.
struct ExplainArguments {
  ComputerOperand computer;
  std::string payload;
  bool bypassVersion = false;
  bool asJson = false;
  std::string format = "text";
  std::vector<std::string> types;
  std::string controller;
  std::size_t nearest = 0;
  WhatIfArguments whatIf;
};

std::vector<std::string> AllTypeNames() {
  std::vector<std::string> names;
  for (const auto& [name, type] : NamedTypes) names.emplace_back(name);
  return names;
}

CommandLine CommandLineOf(ExplainArguments& into) {
  CommandLine line = {
      .verb = "explain",
      .description = Description,
      .footer = std::string(WhatIfHelp) + "\n" + Example,
      .arguments = {
          RecordingArgument(into.computer),
          HostArgument(into.computer),
          PayloadArgument(into.payload),
          BypassVersionArgument(into.bypassVersion),
          {.name = "--type",
           .target = &into.types,
           .help = "only personalities of this type; may be repeated",
           .valueName = "TYPE",
           .choices = AllTypeNames()},
          {.name = "--controller",
           .target = &into.controller,
           .help = "only the controllers with this name or path",
           .valueName = "ENTRY"},
          {.name = "--nearest",
           .target = BoundedNumber{&into.nearest, 1, 1'000'000},
           .help = "only so many personalities for each controller, matches and the nearest misses "
                   "(default: all, as long as they are no more than 10,000 in all)",
           .valueName = "NUMBER"},
          {.name = "--format",
           .target = &into.format,
           .help = "how to print (default: text)",
           .valueName = "FORMAT",
           .choices = {"text", "json"}},
          {.name = "--json", .target = &into.asJson, .help = "the same as --format json"},
      }};
  AddWhatIfOptions(line, into.whatIf);
  return line;
}

ExplainFilter FilterOf(const ExplainArguments& arguments) {
  ExplainFilter filter = {.controller = arguments.controller};
  if (!arguments.types.empty()) filter.types = Types::None;
  for (const auto& type : arguments.types) filter.types |= TypeNamed(type);
  if (arguments.nearest > 0) filter.nearest = arguments.nearest;
  return filter;
}

// What the run does, without the switch that ends it.
const Explanation& DecisionOf(const Explanation& explanation) {
  return explanation.withoutSwitch ? *explanation.withoutSwitch : explanation;
}

// Whether a controller was wanted and configurations were matched, but none has the controller.
bool LacksController(const Explanation& explanation, const ExplainFilter& filter) {
  const auto& explained = DecisionOf(explanation);
  return !filter.controller.empty() && !explained.keys.empty() &&
         std::ranges::none_of(explained.keys, &ExplainedKey::isSelected);
}

int Print(const Explanation& explanation, bool asJson) {
  ProcessConsole console;
  const auto print = [&](std::string_view text) { console.Write(text); };
  asJson ? PrintExplanationJson(explanation, print)
         : PrintExplanationText(explanation, ShowsEmphasis(), print);
  const int status = FinishOutput(console);
  const auto& explained = DecisionOf(explanation);
  if (status != LabStatus::Done || !explained.configurationError) return status;
  return PrintError(*explained.configurationPath, *explained.configurationError);
}

// Explains the computer, which is changed already. Returns the exit status.
int ExplainAndPrint(const ExplainArguments& parsed, const Recording& recording,
                    const Changes& changes) {
  ChangedConfigurations configurations(changes);
  std::optional<Error> refusal;
  const auto filter = FilterOf(parsed);
  const auto options = ToolOptions(parsed.payload, parsed.bypassVersion);
  const auto explanation =
      Explain(recording, options, filter, {&changes, configurations.Loader(refusal)});
  if (refusal) {
    return PrintError(*DecisionOf(explanation).configurationPath,
                      {*refusal, LabStatus::UnreadableInput});
  }
  // Without descriptors there is nothing to explain.
  const auto failure = UnreadableConfiguration(explanation.run, options);
  if (failure && failure->status == LabStatus::OutOfResources) return PrintError(*failure);
  if (LacksController(explanation, filter)) {
    return PrintError(
        parsed.computer.Name(),
        {{"no controller that the payload is matched against is named " + filter.controller},
         LabStatus::UnreadableInput});
  }
  return Print(explanation, parsed.asJson || parsed.format == "json");
}

}  // namespace

VerbEnd ExplainVerb(int argumentCount, char* const arguments[]) {
  ExplainArguments parsed;
  const auto line = CommandLineOf(parsed);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto changes = ParseChanges(parsed.whatIf);
  if (!changes) {
    PrintError(changes.Error().message + "; see fernwick-lab explain --help");
    return LabStatus::BadUsage;
  }
  auto recording = LoadComputer(parsed.computer);
  if (!recording) return PrintError(parsed.computer.Name(), recording.Error());
  ChangedComputer computer(*std::move(recording));
  if (const auto error = ApplyChanges(*changes, computer)) {
    return PrintError(parsed.computer.Name(), {*error, LabStatus::UnreadableInput});
  }
  if (const auto error = DirectoryError(parsed.payload)) {
    return PrintError(parsed.payload, {*error, UnreadableStatus(*error)});
  }
  return ExplainAndPrint(parsed, computer.Recorded(), *changes);
}

}  // namespace fernwick::lab
