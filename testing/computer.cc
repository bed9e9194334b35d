#include "testing/computer.h"

#include <string>

#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::testing {

Computer::Computer()
    : board_(Add("IODeviceTree", 0, "", "", {})),
      options_(Add("IODeviceTree", board_, "options", "", {})),
      services_(Add("IOService", 0, "", "", {})) {}

// Entries, names and properties are in memory that lives as long as the process.
Computer::Computer(const Computer& other)
    : recording_{.list = {},
                 .entries = other.recording_.entries,
                 .planes = other.recording_.planes,
                 .superclasses = other.recording_.superclasses},
      properties_(other.properties_),
      board_(other.board_),
      options_(other.options_),
      services_(other.services_) {}

RegistryEntry Computer::Add(std::string_view plane, RegistryEntry parent, std::string_view name,
                            std::string_view className, const Record& properties) {
  properties_.push_back(properties);
  recording_.entries.push_back({Kept(name), Kept(className), Dict(properties)});
  const auto entry = static_cast<RegistryEntry>(recording_.entries.size());
  auto& recordedPlane = recording_.planes[Kept(plane)];
  recordedPlane.placements[entry] = {parent, {}};
  if (parent == 0) {
    recordedPlane.root = entry;
  } else {
    recordedPlane.placements[parent].children.push_back(entry);
  }
  return entry;
}

Computer& Computer::Set(RegistryEntry entry, std::string_view key, PropertyValue value) {
  auto& properties = properties_[entry - 1];
  properties.Set(Kept(key), value);
  recording_.entries[entry - 1].properties = Dict(properties);
  return *this;
}

Computer& Computer::SetBoard(std::string_view boardId, unsigned char boardRevision) {
  Set(board_, "board-id", Bytes(std::string(boardId) + '\0'));
  return Set(board_, "board-rev", Bytes(std::string(1, static_cast<char>(boardRevision))));
}

RegistryEntry Computer::AddService(RegistryEntry parent, std::string_view name,
                                   std::string_view className, const Record& properties) {
  return Add("IOService", parent, name, className, properties);
}

RegistryEntry Computer::AddPort(std::string_view name, const Record& properties) {
  return AddService(services_, name, PortControllerClass, properties);
}

RegistryEntry Computer::AddThunderbolt(std::string_view name, const Record& properties) {
  return AddService(services_, name, ThunderboltControllerClass, properties);
}

Computer& Computer::Derive(std::string_view className, std::string_view superclass) {
  recording_.superclasses.emplace(Kept(className), Kept(superclass));
  return *this;
}

}  // namespace fernwick::testing
