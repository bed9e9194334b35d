#include <string>

#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/input_file.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Writes a property list, such as a recording or a Config.plist, in another serialisation, "
    "value for value. \"-\" is standard input and standard output. OUT is written completely or "
    "not at all.";

constexpr char Example[] =
    "Example:\n  fernwick-lab convert desk.registry.plist small.registry.plist --to binary\n";

}  // namespace

VerbEnd ConvertVerb(int argumentCount, char* const arguments[]) {
  std::string path;
  std::string out;
  std::string form;
  bool replaces = false;
  const CommandLine line = {
      .verb = "convert",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "FILE", .target = &path, .help = "the property list", .minCount = 1},
          {.name = "OUT", .target = &out, .help = "the file to write", .minCount = 1},
          {.name = "--to",
           .target = &form,
           .help = "the serialisation: xml or binary",
           .minCount = 1,
           .valueName = "FORM",
           .choices = {"xml", "binary"}},
          {.name = "--force", .target = &replaces, .help = "replace OUT where it exists"},
      }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto ifExists = replaces ? IfExists::Replace : IfExists::Refuse;
  if (const int status = CheckOutput(out, ifExists); status != LabStatus::Done) return status;
  auto bytes = ReadInput(path);
  if (!bytes) return PrintError(InputName(path), bytes.Error());
  const auto list = ReadPropertyList(*std::move(bytes)).list;
  if (!list) return PrintError(InputName(path), {list.Error(), LabStatus::MalformedInput});
  const auto serialisation = form == "binary" ? Serialisation::Binary : Serialisation::Xml;
  return WritePropertyList(out, list->value, serialisation, ifExists);
}

}  // namespace fernwick::lab
