#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/recordings/recording_file.h"
#include "lab/recordings/registry_dumps.h"
#include "lab/support/command_line.h"
#include "lab/support/input_file.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"
#include "registry/recording_reader.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Makes a recording of registry dumps. Each is a property list of nested dictionaries, one for "
    "a plane, in which the name, the children, the class and the identity of an entry are under "
    "the keys that the options name; every other key is a property. Entries of several planes with "
    "one identity are one entry, defined in the plane that is named first. OUT is written "
    "completely or not at all.";

constexpr char Example[] =
    "Example:\n  fernwick-lab import dumped.registry.plist --plane IOService=services.plist "
    "--name-key name --children-key children --class-key class\n";

struct ImportArguments {
  std::string out;
  std::vector<std::string> planes;  // NAME=FILE
  DumpKeys keys;
  std::optional<std::string> classes;  // a file
  bool force = false;
};

std::optional<int> Parse(ImportArguments& into, int argumentCount, char* const arguments[]) {
  const CommandLine line = {
      .verb = "import",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "OUT", .target = &into.out, .help = "the file to write", .minCount = 1},
          {.name = "--plane",
           .target = &into.planes,
           .help = "the name of a plane and its dump; repeated for further planes",
           .minCount = 1,
           .valueName = "NAME=FILE"},
          {.name = "--name-key",
           .target = &into.keys.name,
           .help = "the key of an entry's name",
           .minCount = 1,
           .valueName = "KEY"},
          {.name = "--children-key",
           .target = &into.keys.children,
           .help = "the key of its children, an array of entries",
           .minCount = 1,
           .valueName = "KEY"},
          {.name = "--class-key",
           .target = &into.keys.className,
           .help = "the key of its class",
           .valueName = "KEY"},
          {.name = "--id-key",
           .target = &into.keys.id,
           .help = "the key of its identity; without it nothing is linked",
           .valueName = "KEY"},
          {.name = "--classes",
           .target = &into.classes,
           .help = "a dictionary from each class to the one that it derives from",
           .valueName = "FILE"},
          {.name = "--force", .target = &into.force, .help = "replace OUT where it exists"},
      }};
  return ParseCommandLine(line, argumentCount, arguments);
}

// A value NAME=FILE of --plane.
struct PlaneArgument {
  std::string_view name;
  std::string file;
};

PlaneArgument SplitPlane(std::string_view argument) {
  const auto equals = std::min(argument.find('='), argument.size());
  const auto file = argument.substr(std::min(equals + 1, argument.size()));
  return {argument.substr(0, equals), std::string(file)};
}

// What is wrong with the command line; empty when nothing is.
std::string UsageFault(const ImportArguments& arguments, const std::vector<PlaneArgument>& planes) {
  std::vector<std::string> keys = {arguments.keys.name, arguments.keys.children};
  for (const auto& key : {arguments.keys.className, arguments.keys.id}) {
    if (key) keys.push_back(*key);
  }
  std::ranges::sort(keys);
  const auto sameKey = std::ranges::adjacent_find(keys);
  if (sameKey != keys.end()) return "two options name the key \"" + *sameKey + "\"";
  std::vector<std::string_view> names;
  for (const auto& [name, file] : planes) {
    const auto shown = "--plane \"" + std::string(name) + "\": ";
    if (name.empty() || file.empty()) return "--plane needs a NAME=FILE";
    if (name.find(':') != npos || FindInvalidText(name) != npos) {
      return shown + "the name of a plane is a text without \":\"";
    }
    if (std::ranges::find(names, name) != names.end()) return shown + "there are two of that name";
    names.push_back(name);
  }
  return {};
}

Result<PropertyList, LabError> LoadList(const std::string& path) {
  auto bytes = ReadInput(path);
  if (!bytes) return bytes.Error();
  auto list = ReadPropertyList(*std::move(bytes)).list;
  if (!list) return LabError{list.Error(), LabStatus::MalformedInput};
  return *std::move(list);
}

// Prints what is wrong and returns the status.
int ImportPlanes(const ImportArguments& arguments, const std::vector<PlaneArgument>& planes) {
  std::vector<DumpedPlane> dumps;
  for (const auto& [name, file] : planes) {
    auto list = LoadList(file);
    if (!list) return PrintError(InputName(file), list.Error());
    dumps.push_back({std::string(name), *std::move(list)});
  }
  std::optional<PropertyList> classes;
  if (arguments.classes) {
    auto list = LoadList(*arguments.classes);
    if (!list) return PrintError(InputName(*arguments.classes), list.Error());
    classes = *std::move(list);
  }
  auto list =
      RecordDumps(dumps, arguments.keys, classes ? std::optional(classes->value) : std::nullopt);
  if (!list) {
    const auto& [plane, message] = list.Error();
    return PrintError(InputName(planes[plane].file), {{message}, LabStatus::MalformedInput});
  }
  const auto recording = InterpretRecording(*std::move(list));
  if (!recording) {  // only the classes were not checked
    return PrintError(InputName(*arguments.classes),
                      {recording.Error(), LabStatus::MalformedInput});
  }
  return WritePropertyList(arguments.out, recording->list.value, Serialisation::Xml,
                           arguments.force ? IfExists::Replace : IfExists::Refuse);
}

}  // namespace

VerbEnd ImportVerb(int argumentCount, char* const arguments[]) {
  ImportArguments parsed;
  if (const auto status = Parse(parsed, argumentCount, arguments)) return *status;
  std::vector<PlaneArgument> planes;
  for (const auto& plane : parsed.planes) planes.push_back(SplitPlane(plane));
  if (const auto fault = UsageFault(parsed, planes); !fault.empty()) {
    PrintError(fault + "; see fernwick-lab import --help");
    return LabStatus::BadUsage;
  }
  const auto ifExists = parsed.force ? IfExists::Replace : IfExists::Refuse;
  if (const int status = CheckOutput(parsed.out, ifExists); status != LabStatus::Done) {
    return status;
  }
  return ImportPlanes(parsed, planes);
}

}  // namespace fernwick::lab
