#include "testing/computer.h"

#include <utility>

#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::testing {

Computer::Computer()
    : board_(Add("IODeviceTree", 0, "", "", {})),
      options_(Add("IODeviceTree", board_, "options", "", {})),
      services_(Add("IOService", 0, "", "", {})) {}

RegistryEntry Computer::Add(std::string_view plane, RegistryEntry parent, std::string_view name,
                            std::string_view className, Dictionary properties) {
  recording_.entries.push_back({std::string(name), std::string(className), std::move(properties)});
  const auto entry = static_cast<RegistryEntry>(recording_.entries.size());
  auto& recordedPlane = recording_.planes[std::string(plane)];
  recordedPlane.placements[entry] = {parent, {}};
  if (parent == 0) {
    recordedPlane.root = entry;
  } else {
    recordedPlane.placements[parent].children.push_back(entry);
  }
  return entry;
}

Computer& Computer::Set(RegistryEntry entry, std::string_view key, PropertyValue value) {
  recording_.entries[entry - 1].properties.Set(key, std::move(value));
  return *this;
}

Computer& Computer::SetBoard(std::string_view boardId, unsigned char boardRevision) {
  Set(board_, "board-id", Bytes(std::string(boardId) + '\0'));
  return Set(board_, "board-rev", Bytes(std::string(1, static_cast<char>(boardRevision))));
}

RegistryEntry Computer::AddService(RegistryEntry parent, std::string_view name,
                                   std::string_view className, Dictionary properties) {
  return Add("IOService", parent, name, className, std::move(properties));
}

RegistryEntry Computer::AddPort(std::string_view name, Dictionary properties) {
  return AddService(services_, name, PortControllerClass, std::move(properties));
}

RegistryEntry Computer::AddThunderbolt(std::string_view name, Dictionary properties) {
  return AddService(services_, name, ThunderboltControllerClass, std::move(properties));
}

Computer& Computer::Derive(std::string_view className, std::string_view superclass) {
  recording_.superclasses.emplace(className, superclass);
  return *this;
}

}  // namespace fernwick::testing
