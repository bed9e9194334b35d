#include "registry/thunderbolt_inventory.h"

#include <cmath>
#include <cstdint>

#include "registry/inventory.h"
#include "registry/key_schema.h"
#include "registry/typed_readers.h"

namespace fernwick {
namespace {

// Reads both properties always, in this order. Only the low 32 bits of a route are tested.
bool IsAtRootOfTopology(Registry& registry, RegistryEntry controller) {
  std::uint32_t depth = 0;
  const RegistryStatus depthStatus = ReadU32Property(registry, controller, "Depth", depth);
  std::uint32_t route = 0;
  const RegistryStatus routeStatus = ReadU32Property(registry, controller, "Route String", route);
  return routeStatus == RegistrySuccess && route == 0 && depthStatus == RegistrySuccess &&
         depth == 0;
}

// Both keys from both properties: without the first there is neither key, and the second counts as
// 0 when it does not read.
void FillVersions(Registry& registry, RegistryEntry controller, HardwareRecord& record,
                  RecordSource& source) {
  const auto& version = *FindKey("Version");
  const auto& engineering = *FindKey("Engineering Version");
  std::uint32_t rom = 0;
  const auto status = ReadU32Property(registry, controller, version.thunderbolt.property, rom);
  if (status != RegistrySuccess) return;
  std::uint32_t eeprom = 0;
  ReadU32Property(registry, controller, engineering.thunderbolt.property, eeprom);
  record.Set(version.name, ThunderboltFirmwareVersion(rom, eeprom));
  record.Set(engineering.name, static_cast<std::uint8_t>(eeprom & 0xC0));
  source.version = Origin::Thunderbolt;
}

// A port's own "RID" is never replaced: then "UID" is not even read for it.
void FillRid(Registry& registry, RegistryEntry controller, const Key& key, HardwareRecord& record,
             RecordSource& source) {
  if (record.Find(key.name) != nullptr) return;
  FillKey(registry, controller, key.name, key.thunderbolt, record);
  if (record.Find(key.name) != nullptr) source.rid = Origin::Thunderbolt;
}

// The value as it is, whatever its kind. False, and nothing is written, when there is none.
bool FillUid(Registry& registry, RegistryEntry controller, const Key& key, HardwareRecord& record) {
  const auto uid = registry.GetProperty(controller, key.thunderbolt.property);
  if (uid) record.Set(key.name, *uid);
  return uid.has_value();
}

}  // namespace

InventoryResult CollectThunderboltControllers(Registry& registry) {
  HardwareInventory inventory;
  const auto fault = ForEachService(
      registry, ThunderboltControllerClass, [&](RegistryEntry controller) -> std::optional<Fault> {
        if (!IsAtRootOfTopology(registry, controller)) {
          inventory.skipped.push_back({controller, SkipReason::NotAtRootOfTopology});
          return std::nullopt;
        }
        return FillThunderboltFields(registry, controller, &inventory.records.emplace_back(),
                                     inventory.sources.emplace_back());
      });
  if (fault) return *fault;
  return inventory;
}

std::optional<Fault> FillThunderboltFields(Registry& registry, RegistryEntry controller,
                                           HardwareRecord* record, RecordSource& source) {
  if (record == nullptr) return std::nullopt;
  source.thunderbolt = controller;
  for (const auto& key : KeySchema()) {
    if (key.name == "RID") {
      FillRid(registry, controller, key, *record, source);
    } else if (key.name == "Ridge UID") {
      if (!FillUid(registry, controller, key, *record)) return Fault::MissingUid;
    } else {
      FillKey(registry, controller, key.name, key.thunderbolt, *record);
    }
  }
  FillVersions(registry, controller, *record, source);
  return std::nullopt;
}

// The truncation of a whole number is part of the formula.
double ThunderboltFirmwareVersion(std::uint32_t rom, std::uint32_t eeprom) {
  const double major = DecodeBcd(rom);
  const double minor = eeprom & 0x3F;
  return std::trunc(major * 100.0 + minor) / 100.0 + 0.000000001;
}

}  // namespace fernwick
