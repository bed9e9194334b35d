#include "lab/replay.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "driver/process.h"
#include "driver/run.h"
#include "lab/exit_status.h"
#include "lab/messages.h"
#include "platform/file_system.h"
#include "registry/recorded_registry.h"
#include "registry/recording_reader.h"

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

}  // namespace

int Replay(int argumentCount, char* const arguments[]) {
  if (argumentCount == 0 || arguments[0][0] == '-') {
    std::fputs(ReplayHelp, stderr);
    return LabStatus::BadUsage;
  }
  const std::string path = arguments[0];
  auto file = ReadWholeFile(path);
  if (!file.bytes) {
    PrintError(path + ": " + file.error);
    return LabStatus::UnreadableInput;
  }
  auto reading = ReadRecording(*std::move(file.bytes));
  if (!reading.recording) {
    PrintError(path + ": " + reading.error);
    return LabStatus::MalformedInput;
  }
  RecordedRegistry registry(*std::move(reading.recording));
  std::string toolName = "fernwick";
  const auto vector = ToolArguments(toolName, argumentCount - 1, arguments + 1);
  EndWhenOutOfMemory(ExitStatus::NoMatches);
  return Run(argumentCount, vector.data(), registry, stdout);
}

}  // namespace fernwick::lab
