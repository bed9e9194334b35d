#include "lab/recordings/entry_path.h"

namespace fernwick::lab {

std::string EntryPath(const Recording& recording, RegistryEntry entry) {
  return EntryPath(recording, ServicePlane, entry);
}

std::string EntryPath(const Recording& recording, std::string_view plane, RegistryEntry entry) {
  const auto& [root, placements] = recording.planes.at(plane);
  std::string path;
  while (entry != root) {
    path.insert(0, "/" + std::string(recording.entries[entry - 1].name));
    entry = placements.at(entry).parent;
  }
  return std::string(plane) + ":" + (path.empty() ? "/" : path);
}

}  // namespace fernwick::lab
