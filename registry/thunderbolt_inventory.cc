#include "registry/thunderbolt_inventory.h"

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/diagnostics.h"
#include "registry/inventory.h"
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

void FillRid(Registry& registry, RegistryEntry controller, HardwareRecord& record,
             RecordSource& source) {
  if (record.Find("RID") != nullptr) return;
  std::uint64_t uid = 0;
  if (ReadU64Property(registry, controller, "UID", uid) != RegistrySuccess) return;
  record.Set("RID", static_cast<std::int32_t>(uid & 0xF));
  source.rid = Origin::Thunderbolt;
}

void FillDeviceModel(Registry& registry, RegistryEntry controller, HardwareRecord& record) {
  auto name = registry.GetProperty(controller, "Device Model Name");
  if (name && name->AsString()) record.Set("Device Model Name", *std::move(name));
  FillIntegers(
      registry, controller, record,
      {{"Device Model ID", "Device Model ID"}, {"Device Model Revision", "Device Model Revision"}});
}

void FillFirmwareMode(Registry& registry, RegistryEntry controller, HardwareRecord& record) {
  bool mode = false;
  if (ReadBoolProperty(registry, controller, "Firmware Mode", mode) != RegistrySuccess) return;
  record.Set("Firmware Mode", mode);
}

// Written without a test of presence or kind.
void FillUid(Registry& registry, RegistryEntry controller, HardwareRecord& record) {
  auto uid = registry.GetProperty(controller, "UID");
  if (!uid) EndAbnormally(MissingUidFault);
  record.Set("Ridge UID", *std::move(uid));
}

void FillVersion(Registry& registry, RegistryEntry controller, HardwareRecord& record,
                 RecordSource& source) {
  std::uint32_t rom = 0;
  if (ReadU32Property(registry, controller, "ROM Version", rom) != RegistrySuccess) return;
  std::uint32_t eeprom = 0;
  ReadU32Property(registry, controller, "EEPROM Revision", eeprom);  // 0 when it does not read
  record.Set("Version", ThunderboltFirmwareVersion(rom, eeprom));
  record.Set("Engineering Version", static_cast<std::uint8_t>(eeprom & 0xC0));
  source.version = Origin::Thunderbolt;
}

}  // namespace

HardwareInventory CollectThunderboltControllers(Registry& registry, InventoryRecorder* recorder) {
  std::vector<HardwareRecord> controllers;
  ForEachService(registry, ThunderboltControllerClass, [&](RegistryEntry controller) {
    if (!IsAtRootOfTopology(registry, controller)) {
      return Omit(controller, Omission::NotAtRootOfTopology, recorder);
    }
    RecordSource source;
    FillThunderboltFields(registry, controller, &controllers.emplace_back(), &source);
    List(source, recorder);
  });
  return NonEmpty(std::move(controllers));
}

void FillThunderboltFields(Registry& registry, RegistryEntry controller, HardwareRecord* record,
                           RecordSource* source) {
  if (record == nullptr) return;
  RecordSource unasked;
  if (source == nullptr) source = &unasked;
  source->thunderbolt = controller;
  FillRid(registry, controller, *record, *source);
  FillIntegers(registry, controller, *record,
               {{"Vendor ID", "Ridge Silicon Vendor ID"},
                {"Device ID", "Ridge Silicon Device ID"},
                {"Revision ID", "Ridge Silicon Revision"}});
  FillDeviceModel(registry, controller, *record);
  FillFirmwareMode(registry, controller, *record);
  FillUid(registry, controller, *record);
  FillVersion(registry, controller, *record, *source);
}

// The truncation of a whole number is part of how the value is reckoned.
double ThunderboltFirmwareVersion(std::uint32_t rom, std::uint32_t eeprom) {
  const double major = DecodeBcd(rom);
  const double minor = eeprom & 0x3F;
  return std::trunc(major * 100.0 + minor) / 100.0 + 0.000000001;
}

}  // namespace fernwick
