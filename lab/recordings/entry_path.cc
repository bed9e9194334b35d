#include "lab/recordings/entry_path.h"

namespace fernwick::lab {

std::string EntryPath(const Recording& recording, RegistryEntry entry) {
  const auto& plane = recording.planes.at(ServicePlane);
  std::string path;
  while (entry != plane.root) {
    path.insert(0, "/" + std::string(recording.entries[entry - 1].name));
    entry = plane.placements.at(entry).parent;
  }
  return std::string(ServicePlane) + ":" + (path.empty() ? "/" : path);
}

}  // namespace fernwick::lab
