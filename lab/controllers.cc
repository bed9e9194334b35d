#include "lab/controllers.h"

#include <utility>
#include <vector>

#include "lab/isolation.h"
#include "registry/inventory.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

// A recorded computer all of whose services but one are hidden from matching: whether the inventory
// lists that one is then the inventory's own answer.
class OneServiceRegistry : public RecordedRegistry {
 public:
  explicit OneServiceRegistry(const Recording& recording) : RecordedRegistry(recording) {}

  void ShowOnly(RegistryEntry service) { service_ = service; }

  RegistryEntry NextEntry(RegistryEntry iterator) override {
    RegistryEntry entry = RecordedRegistry::NextEntry(iterator);
    while (entry != 0 && entry != service_) entry = RecordedRegistry::NextEntry(iterator);
    return entry;
  }

 private:
  RegistryEntry service_ = 0;
};

using Collect = HardwareInventory (*)(Registry&);

Controllers FindControllers(const Recording& recording, std::string_view kind,
                            std::string_view className, Collect collect) {
  Controllers controllers{.kind = kind};
  RecordedRegistry registry(recording);
  ForEachService(registry, className,
                 [&](RegistryEntry entry) { controllers.places.emplace(entry, 0); });
  if (SignalThatEnds([&] { collect(registry); }) != 0) {
    controllers.endsRun = true;
    return controllers;
  }
  controllers.inventory = collect(registry);
  std::size_t listed = 0;
  OneServiceRegistry alone(recording);
  ForEachService(registry, className, [&](RegistryEntry entry) {
    alone.ShowOnly(entry);
    if (collect(alone)) controllers.places[entry] = ++listed;
  });
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
