#include "lab/show.h"

#include <optional>
#include <string>

#include "lab/command_line.h"
#include "lab/exit_status.h"
#include "lab/messages.h"
#include "lab/recording_file.h"
#include "lab/shown_computer.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Shows the registry of a recorded computer as a tree, with the controllers picked out, and "
    "both "
    "inventories as the tool sees them.";

constexpr char Example[] = "Example:\n  fernwick-lab show desk.registry.plist --plane IOService\n";

}  // namespace

int Show(int argumentCount, char* const arguments[]) {
  std::string path;
  std::optional<std::string> plane;
  bool asJson = false;
  CLI::App app(Description, "fernwick-lab show");
  app.footer(Example);
  app.add_option("RECORDING", path, "the recorded computer")->required();
  app.add_option("--plane", plane, "show this plane alone")->type_name("PLANE");
  app.add_flag("--json", asJson, "print JSON");
  if (const auto status = ParseCommandLine(app, argumentCount, arguments)) return *status;
  auto file = LoadRecording(path);
  if (!file.recording) {
    PrintError(file.error);
    return file.status;
  }
  if (plane && !file.recording->planes.contains(*plane)) {
    PrintError(path + ": there is no plane \"" + *plane + "\"");
    return LabStatus::BadUsage;
  }
  const auto computer = LookAt(*std::move(file.recording));
  return PrintResult(asJson ? PrintJson(ShowAsJson(computer, plane)) : ShowAsText(computer, plane));
}

}  // namespace fernwick::lab
