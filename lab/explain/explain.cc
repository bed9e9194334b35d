#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
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
    "Tells which personality of a payload matches which controller of a recorded computer and, of "
    "every other pair, why not: all requirements that fail, near misses first.";

constexpr char Example[] = "Example:\n  fernwick-lab explain desk.registry.plist -p payload\n";

// What is wrong with a directory; empty when nothing is.
std::string FaultOfDirectory(const std::string& path) {
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

int ExplainVerb(int argumentCount, char* const arguments[]) {
  std::string path;
  std::string payload;
  bool bypassVersion = false;
  bool asJson = false;
  const CommandLine line = {
      .verb = "explain",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "RECORDING", .target = &path, .help = "the recorded computer", .least = 1},
          {.name = "-p,--payload",
           .target = &payload,
           .help = "the payload directory",
           .least = 1,
           .valueName = "PAYLOAD"},
          {.name = "--bypassVersion", .target = &bypassVersion, .help = "as the tool's option"},
          {.name = "--json", .target = &asJson, .help = "print JSON"},
      }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto file = LoadRecording(path);
  if (!file.recording) {
    PrintError(file.error);
    return file.status;
  }
  if (const auto fault = FaultOfDirectory(payload); !fault.empty()) {
    PrintError(payload + ": " + fault);
    return LabStatus::UnreadableInput;
  }
  const auto explanation = Explain(*file.recording, payload, bypassVersion);
  Output out(stdout);
  const auto print = [&](std::string_view text) { out.Write(text); };
  asJson ? PrintExplanationJson(explanation, print)
         : PrintExplanationText(explanation, ShowsEmphasis(), print);
  const int status = FinishOutput(out);
  if (status != LabStatus::Done || explanation.configurationFault.empty()) return status;
  PrintError(*explanation.configurationPath + ": " + explanation.configurationFault);
  return explanation.configurationStatus;
}

}  // namespace fernwick::lab
