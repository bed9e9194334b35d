#include "lab/recordings/controllers.h"

#include <utility>
#include <vector>

#include "lab/support/isolation.h"
#include "registry/inventory.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

using Collect = HardwareInventory (*)(Registry&, InventoryRecorder*);

Controllers FindControllers(const Recording& recording, std::string_view kind,
                            std::string_view className, Collect collect) {
  Controllers controllers{.kind = kind};
  RecordedRegistry registry(recording);
  ForEachService(registry, className,
                 [&](RegistryEntry entry) { controllers.places.emplace(entry, 0); });
  if (SignalThatEnds([&] { collect(registry, nullptr); }) != 0) {
    controllers.endsRun = true;
    return controllers;
  }
  InventoryRecorder recorder;
  controllers.inventory = collect(registry, &recorder);
  std::size_t place = 0;
  for (const auto& source : recorder.listed) controllers.places[source.Controller()] = ++place;
  return controllers;
}

}  // namespace

Controllers FindThunderboltControllers(const Recording& recording) {
  return FindControllers(recording, "Thunderbolt controller", ThunderboltControllerClass,
                         CollectThunderboltControllers);
}

Controllers FindPortControllers(const Recording& recording) {
  return FindControllers(recording, "USB-C port controller", PortControllerClass,
                         CollectPortControllers);
}

}  // namespace fernwick::lab
