#include "lab/recordings/controllers.h"

#include <optional>
#include <utility>

#include "registry/inventory.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

using Collect = InventoryResult (*)(Registry&);

Controllers FindControllers(const Recording& recording, std::string_view kind,
                            std::string_view className, Collect collect) {
  Controllers controllers{.kind = kind};
  RecordedRegistry registry(recording);
  ForEachService(registry, className, [&](RegistryEntry entry) -> std::optional<Fault> {
    controllers.numbers.emplace(entry, 0);
    return std::nullopt;
  });
  auto inventory = collect(registry);
  controllers.endsRun = !inventory;
  if (!inventory) return controllers;
  controllers.inventory = *std::move(inventory);
  std::size_t number = 0;
  for (const auto& source : controllers.inventory.sources) {
    controllers.numbers[source.Controller()] = ++number;
  }
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
