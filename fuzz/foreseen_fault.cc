#include "fuzz/foreseen_fault.h"

#include <cmath>
#include <cstdint>
#include <optional>

#include "fuzz/plain_recording.h"
#include "fuzz/switch_rule.h"

namespace fernwick::fuzz {
namespace {

constexpr std::string_view BareSwitch = "a boot argument is a switch name without a value";
constexpr std::string_view NoUid = "a Thunderbolt controller has no UID";

// What taking an inventory comes to.
struct Inventory {
  bool hasFault = false;
  bool isEmpty = true;
};

// The low 32 bits of a number; nothing when the property is none.
std::optional<std::uint32_t> NumberOf(const RecordedEntry& entry, std::string_view key) {
  const auto* value = entry.properties.Find(key);
  if (value == nullptr) return std::nullopt;
  if (const auto integer = value->AsInteger()) return static_cast<std::uint32_t>(integer->Bits());
  if (const auto* boolean = value->AsBoolean()) return *boolean;
  if (const auto* real = value->AsReal()) {
    if (!(*real >= 1)) return 0;
    if (*real >= 0x1p64) return 0xFFFFFFFF;
    return static_cast<std::uint32_t>(std::fmod(std::trunc(*real), 0x1p32));
  }
  return std::nullopt;
}

// The nearest controller above the entry; 0 when there is none.
RegistryEntry ThunderboltAbove(const Recording& recording, RegistryEntry entry) {
  const auto& placements = recording.planes.at("IOService").placements;
  for (auto above = placements.at(entry).parent; above != 0; above = placements.at(above).parent) {
    if (Conforms(recording, above, "IOThunderboltSwitch")) return above;
  }
  return 0;
}

bool HasUid(const Recording& recording, RegistryEntry controller) {
  return EntryOf(recording, controller).properties.Find("UID") != nullptr;
}

Inventory TakeThunderboltControllers(const Recording& recording) {
  Inventory inventory;
  for (const auto controller : ServicesOfClass(recording, "IOThunderboltSwitch")) {
    const auto& entry = EntryOf(recording, controller);
    if (NumberOf(entry, "Depth") != 0u || NumberOf(entry, "Route String") != 0u) continue;
    inventory.isEmpty = false;
    if (!HasUid(recording, controller)) inventory.hasFault = true;
  }
  return inventory;
}

Inventory TakePorts(const Recording& recording) {
  Inventory inventory;
  for (const auto port : ServicesOfClass(recording, "QuinceHPMDevice")) {
    const auto& entry = EntryOf(recording, port);
    if (NumberOf(entry, "Route String").value_or(0) != 0) continue;
    const auto controller = ThunderboltAbove(recording, port);
    if (controller != 0 && !HasUid(recording, controller)) inventory.hasFault = true;
    if (controller == 0 || NumberOf(entry, "Address").value_or(0) == 0) inventory.isEmpty = false;
  }
  return inventory;
}

const Dictionary& BootSettings(const Recording& recording) {
  static const Dictionary none;
  const auto plane = recording.planes.find("IODeviceTree");
  if (plane == recording.planes.end()) return none;
  for (const auto child : plane->second.placements.at(plane->second.root).children) {
    const auto& entry = EntryOf(recording, child);
    if (entry.name == "options") return entry.properties;
  }
  return none;
}

Outlook ForeseeSwitches(const Dictionary& settings) {
  const auto* value = settings.Find("boot-args");
  const auto text = value == nullptr ? std::nullopt : value->AsString();
  const auto arguments = text.value_or("");
  constexpr std::string_view Usbc = "fernwick_bypass_usbc_updates";
  if (HoldsBareName(arguments, Usbc)) return {BareSwitch};
  if (IsSwitchSet(arguments, settings.Find(Usbc), Usbc)) return {"", true};
  if (HoldsBareName(arguments, "fernwick_bypassversioncheck")) return {BareSwitch};
  return {};
}

bool ListingHasFault(const Recording& recording) {
  const auto ports = TakePorts(recording);
  if (ports.hasFault || !ports.isEmpty) return ports.hasFault;
  return TakeThunderboltControllers(recording).hasFault;
}

bool MatchingHasFault(const Recording& recording, const Dictionary& configuration) {
  for (const auto& entry : configuration.Entries()) {
    const bool isThunderbolt = entry.key.View() == "LegacyThunderbolt";
    const auto inventory =
        isThunderbolt ? TakeThunderboltControllers(recording) : TakePorts(recording);
    if (inventory.hasFault) return true;
  }
  return false;
}

}  // namespace

Outlook ForeseeRun(const Recording& recording, const RunRequest& request) {
  const auto switches = ForeseeSwitches(BootSettings(recording));
  if (!switches.fault.empty() || switches.isBypassed || !request.accepted) return switches;
  if (request.verbose && ListingHasFault(recording)) return {NoUid};
  if (request.configuration == nullptr) return {};
  return {MatchingHasFault(recording, *request.configuration) ? NoUid : ""};
}

}  // namespace fernwick::fuzz
