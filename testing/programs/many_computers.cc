#include "testing/programs/many_computers.h"

namespace fernwick::testing {
namespace {

std::string Key(const std::string& key, const std::string& value) {
  return "<key>" + key + "</key>" + value;
}

std::string Text(const std::string& text) {
  return "<string>" + text + "</string>";
}

std::string Number(std::size_t number) {
  return "<integer>" + std::to_string(number) + "</integer>";
}

std::string Dict(const std::string& entries) {
  return "<dict>" + entries + "</dict>";
}

std::string Port(std::size_t number, std::size_t version) {
  return Dict(
      Key("Name", Text("port" + std::to_string(number))) + Key("Class", Text("QuinceHPMDevice")) +
      Key("Properties", Dict(Key("Address", Number(number)) + Key("Version", Number(version)))));
}

std::string RecordingOf(const std::string& tree, const std::string& services) {
  return Dict(Key("Recording Version", Number(1)) +
              Key("Planes", Dict(Key("IODeviceTree", Dict(tree)) +
                                 Key("IOService",
                                     Dict(Key("Children", "<array>" + services + "</array>"))))));
}

// "Zed-0" to "Zed-2" in base64, without a zero byte after it.
const std::string BoardData[] = {"WmVkLTA=", "WmVkLTE=", "WmVkLTI="};

std::string Configuration(std::size_t minimum) {
  return Dict(Key("LegacyUSBC",
                  Dict(Key("Version", Number(7)) + Key("Existing Min Version", Number(minimum)) +
                       Key("Firmware", Text("ports.bin")))));
}

}  // namespace

std::string FaultyRecording() {
  const auto options =
      Dict(Key("Name", Text("options")) +
           Key("Properties", Dict(Key("boot-args", Text("fernwick_bypass_usbc_updates")))));
  return RecordingOf(Key("Children", "<array>" + options + "</array>"), "");
}

std::string SmallRecording(std::size_t number) {
  const auto board = "<data>" + BoardData[number % 3] + "</data>";
  std::string ports;
  for (std::size_t i = 0; i < number % 4; ++i) ports += Port(i, number % 10);
  return RecordingOf(Key("Properties", Dict(Key("board-id", board))), ports);
}

void WriteManyComputers(const TemporaryDirectory& directory, std::size_t count,
                        std::size_t faulty) {
  directory.Write("payload/Fernwick/Zed-0/Config.plist", Configuration(0));
  directory.Write("payload/Fernwick/Zed-1/Config.plist", Configuration(3));
  for (std::size_t i = 0; i < count; ++i) {
    directory.Write(
        "computers/" + std::to_string(i / 100) + "/" + std::to_string(i % 100) + ".registry.plist",
        i % 100 == faulty ? FaultyRecording() : SmallRecording(i));
  }
}

}  // namespace fernwick::testing
