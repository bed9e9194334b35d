#include <string>

#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Writes the same recording in another serialisation, value for value. OUT appears whole or not "
    "at all; what stood there before is replaced.";

constexpr char Example[] =
    "Example:\n  fernwick-lab convert desk.registry.plist small.registry.plist --to binary\n";

}  // namespace

VerbEnd Convert(int argumentCount, char* const arguments[]) {
  std::string path;
  std::string out;
  std::string form;
  const CommandLine line = {
      .verb = "convert",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "RECORDING", .target = &path, .help = "the recorded computer", .least = 1},
          {.name = "OUT", .target = &out, .help = "the file to write", .least = 1},
          {.name = "--to",
           .target = &form,
           .help = "the serialisation: xml or binary",
           .least = 1,
           .valueName = "FORM",
           .choices = {"xml", "binary"}},
      }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto recording = LoadRecording(path);
  if (!recording) return PrintError(path, recording.Error());
  const auto serialisation = form == "binary" ? Serialisation::Binary : Serialisation::Xml;
  return WriteRecording(out, recording->list.value, serialisation);
}

}  // namespace fernwick::lab
