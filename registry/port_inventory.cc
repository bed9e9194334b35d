#include "registry/port_inventory.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "registry/inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "registry/typed_readers.h"

namespace fernwick {
namespace {

constexpr std::string_view ServicePlane = "IOService";

// Only the low 32 bits of a route are tested.
bool IsOwnPort(Registry& registry, RegistryEntry port) {
  std::uint32_t route = 0;
  const RegistryStatus status = ReadU32Property(registry, port, "Route String", route);
  return status == RegistryNotFound || (status == RegistrySuccess && route == 0);
}

// Returns the address flag: whether the port has an address other than 0.
bool FillAddress(Registry& registry, RegistryEntry port, HardwareRecord& record) {
  std::uint32_t address = 0;
  if (ReadU32Property(registry, port, "Address", address) != RegistrySuccess) return false;
  record.Set("Port Address", static_cast<std::int32_t>(address));
  return address != 0;
}

void FillVersion(Registry& registry, RegistryEntry port, HardwareRecord& record) {
  std::uint32_t version = 0;
  if (ReadU32Property(registry, port, "Version", version) != RegistrySuccess) return;
  record.Set("Version", static_cast<std::int32_t>(DecodeBcd(version)));
}

// `uuidStatus` is carried through one whole pass and never reset in it: the first port without a
// string "UUID" ends "Port UUID" for itself and for every later port, whose "UUID" is not even
// fetched.
void FillUuid(Registry& registry, RegistryEntry port, HardwareRecord& record,
              RegistryStatus& uuidStatus) {
  if (uuidStatus != RegistrySuccess) return;
  auto uuid = registry.GetProperty(port, "UUID");
  if (uuid && uuid->AsString()) {
    record.Set("Port UUID", *std::move(uuid));
  } else {
    uuidStatus = RegistryNotFound;
  }
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

// The record of one port, or nothing for a port that is not to be listed. `source` learns where its
// values were read.
std::optional<HardwareRecord> DescribePort(Registry& registry, RegistryEntry port,
                                           RegistryStatus& uuidStatus, RecordSource& source) {
  HardwareRecord record;
  FillIntegers(registry, port, record,
               {{"RID", "RID"},
                {"Vendor ID", "Port Silicon Vendor ID"},
                {"Device ID", "Port Silicon Device ID"},
                {"Revision ID", "Port Silicon Revision"},
                {"Revision", "Port OTP Revision"}});
  const bool hasNonZeroAddress = FillAddress(registry, port, record);
  FillVersion(registry, port, record);
  // The address is read and written a second time: the sequence of reads is part of what a registry
  // sees, and the flag stays that of the first.
  FillAddress(registry, port, record);
  source = {.port = port,
            .rid = record.Find("RID") == nullptr ? Origin::Nowhere : Origin::Port,
            .version = record.Find("Version") == nullptr ? Origin::Nowhere : Origin::Port,
            .uuidFetched = uuidStatus == RegistrySuccess};
  FillUuid(registry, port, record, uuidStatus);
  const RegistryEntry ancestor = ThunderboltAncestor(registry, port);
  if (ancestor == 0) return record;
  FillThunderboltFields(registry, ancestor, &record, &source);
  if (hasNonZeroAddress) return std::nullopt;
  return record;
}

}  // namespace

HardwareInventory CollectPortControllers(Registry& registry, InventoryRecorder* recorder) {
  std::vector<HardwareRecord> ports;
  RegistryStatus uuidStatus = RegistrySuccess;
  ForEachService(registry, PortControllerClass, [&](RegistryEntry port) {
    if (!IsOwnPort(registry, port)) return Omit(port, Omission::RouteString, recorder);
    RecordSource source;
    auto record = DescribePort(registry, port, uuidStatus, source);
    if (!record) return Omit(port, Omission::AddressBelowThunderbolt, recorder);
    List(source, recorder);
    ports.push_back(*std::move(record));
  });
  return NonEmpty(std::move(ports));
}

}  // namespace fernwick
