#include "registry/port_inventory.h"

#include <cstdint>
#include <utility>

#include "registry/inventory.h"
#include "registry/key_schema.h"
#include "registry/thunderbolt_inventory.h"
#include "registry/typed_readers.h"

namespace fernwick {
namespace {

// Only the low 32 bits of a route are tested.
bool IsOwnPort(Registry& registry, RegistryEntry port) {
  std::uint32_t route = 0;
  const RegistryStatus status = ReadU32Property(registry, port, "Route String", route);
  // coverage: 1 of 6 branches: The typed readers return no third status; with one, the port would
  // not be the computer's own.
  return status == RegistryNotFound || (status == RegistrySuccess && route == 0);
}

// Whether the port has an address other than 0.
bool HasNonZeroAddress(const HardwareRecord& record) {
  const auto* address = record.Find("Port Address");
  return address != nullptr && address->AsInteger() != Integer(0);
}

// `uuidStatus` is carried through one whole pass and never reset in it: the first port without a
// string "UUID" ends "Port UUID" for itself and for every later port, whose "UUID" is not even
// fetched.
void FillUuid(Registry& registry, RegistryEntry port, const Key& key, HardwareRecord& record,
              RegistryStatus& uuidStatus) {
  if (uuidStatus != RegistrySuccess) return;
  FillKey(registry, port, key.name, key.port, record);
  if (record.Find(key.name) == nullptr) uuidStatus = RegistryNotFound;
}

// Writes the port's own fields, in the order of the schema, and returns whether the address is
// other than 0. The address is read and written again after the version: the sequence of
// reads is observable behaviour, and the first read decides the result.
bool FillPortFields(Registry& registry, RegistryEntry port, HardwareRecord& record,
                    RegistryStatus& uuidStatus) {
  bool hasNonZeroAddress = false;
  for (const auto& key : KeySchema()) {
    if (key.name == "Port UUID") {
      FillUuid(registry, port, key, record, uuidStatus);
      continue;
    }
    FillKey(registry, port, key.name, key.port, record);
    if (key.name == "Port Address") hasNonZeroAddress = HasNonZeroAddress(record);
    if (key.name == "Version") {
      const auto& address = *FindKey("Port Address");
      FillKey(registry, port, address.name, address.port, record);
    }
  }
  return hasNonZeroAddress;
}

// The nearest Thunderbolt controller above the port, however far up; 0 when there is none.
RegistryEntry ThunderboltAncestor(Registry& registry, RegistryEntry port) {
  RegistryEntry ancestor = port;
  do {
    const RegistryEntry child = ancestor;
    if (registry.GetParentEntry(child, ServicePlane, ancestor) != RegistrySuccess) return 0;
  } while (!registry.ConformsToClass(ancestor, ThunderboltControllerClass));
  return ancestor;
}

Origin OriginOfOwn(const HardwareRecord& record, std::string_view key) {
  return record.Find(key) == nullptr ? Origin::None : Origin::Port;
}

// Adds one port to the inventory, as listed or as skipped.
std::optional<Fault> AddPort(Registry& registry, RegistryEntry port, RegistryStatus& uuidStatus,
                             HardwareInventory& inventory) {
  if (!IsOwnPort(registry, port)) {
    inventory.skipped.push_back({port, SkipReason::RouteString});
    return std::nullopt;
  }
  HardwareRecord record;
  const bool uuidFetched = uuidStatus == RegistrySuccess;
  const bool hasNonZeroAddress = FillPortFields(registry, port, record, uuidStatus);
  RecordSource source = {.port = port,
                         .rid = OriginOfOwn(record, "RID"),
                         .version = OriginOfOwn(record, "Version"),
                         .uuidFetched = uuidFetched};
  const RegistryEntry ancestor = ThunderboltAncestor(registry, port);
  if (ancestor != 0) {
    if (const auto fault = FillThunderboltFields(registry, ancestor, &record, source)) return fault;
    if (hasNonZeroAddress) {
      inventory.skipped.push_back({port, SkipReason::AddressBelowThunderbolt});
      return std::nullopt;
    }
  }
  inventory.records.push_back(std::move(record));
  inventory.sources.push_back(source);
  return std::nullopt;
}

}  // namespace

InventoryResult CollectPortControllers(Registry& registry) {
  HardwareInventory inventory;
  RegistryStatus uuidStatus = RegistrySuccess;
  const auto fault = ForEachService(registry, PortControllerClass, [&](RegistryEntry port) {
    return AddPort(registry, port, uuidStatus, inventory);
  });
  if (fault) return *fault;
  return inventory;
}

}  // namespace fernwick
