#include "lab/convert.h"

#include <map>
#include <string>

#include "lab/command_line.h"
#include "lab/messages.h"
#include "lab/recording_document.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Writes the same recording in another serialisation, value for value. OUT appears whole or not "
    "at all; what stood there before is replaced.";

constexpr char Example[] =
    "Example:\n  fernwick-lab convert desk.registry.plist small.registry.plist --to binary\n";

const std::map<std::string, Serialisation> Forms = {{"xml", Serialisation::Xml},
                                                    {"binary", Serialisation::Binary}};

}  // namespace

int Convert(int argumentCount, char* const arguments[]) {
  std::string path;
  std::string out;
  std::string form;
  CLI::App app(Description, "fernwick-lab convert");
  app.footer(Example);
  app.add_option("RECORDING", path, "the recorded computer")->required();
  app.add_option("OUT", out, "the file to write")->required();
  app.add_option("--to", form, "the serialisation: xml or binary")
      ->required()
      ->type_name("FORM")
      ->check(CLI::IsMember({"xml", "binary"}));
  if (const auto status = ParseCommandLine(app, argumentCount, arguments)) return *status;
  const auto document = LoadRecordingDocument(path);
  if (!document.value) {
    PrintError(document.error);
    return document.status;
  }
  return WriteRecordingDocument(out, *document.value, Forms.at(form));
}

}  // namespace fernwick::lab
