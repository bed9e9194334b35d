#include <string>

#include "lab/recordings/host_recording.h"
#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Writes the computer that this runs on as a recording: the properties that the tool reads, or "
    "with --all every one, which are private in part. With --root, the computer whose files were "
    "copied to a directory. A run over the recording ends as one on the computer. \"-\" is "
    "standard output. OUT is written completely or not at all.";

constexpr char Example[] = "Example:\n  fernwick-lab record this-computer.registry.plist\n";

}  // namespace

VerbEnd RecordVerb(int argumentCount, char* const arguments[]) {
  std::string out;
  std::string root = "/";
  std::string form = "xml";
  bool recordsAll = false;
  bool replaces = false;
  const CommandLine line = {
      .verb = "record",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "OUT", .target = &out, .help = "the file to write", .minCount = 1},
          {.name = "--root",
           .target = &root,
           .help = "a directory with a copy of another computer's files",
           .valueName = "DIR"},
          {.name = "--to",
           .target = &form,
           .help = "the serialisation: xml or binary",
           .valueName = "FORM",
           .choices = {"xml", "binary"}},
          {.name = "--all",
           .target = &recordsAll,
           .help = "record every property, also those that the tool does not read"},
          {.name = "--force", .target = &replaces, .help = "replace OUT where it exists"},
      }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto ifExists = replaces ? IfExists::Replace : IfExists::Refuse;
  if (const int status = CheckOutput(out, ifExists); status != LabStatus::Done) return status;
  HostRegistry registry(root);
  if (!registry.RootError().empty()) {
    return PrintError(root, {{registry.RootError()}, LabStatus::UnreadableInput});
  }
  const auto recorded = recordsAll ? RecordedProperties::All : RecordedProperties::ThoseOfTheTool;
  const auto list = RecordHost(registry, recorded);
  const auto serialisation = form == "binary" ? Serialisation::Binary : Serialisation::Xml;
  return WritePropertyList(out, list.value, serialisation, ifExists);
}

}  // namespace fernwick::lab
