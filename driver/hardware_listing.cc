#include "driver/hardware_listing.h"

#include <cinttypes>
#include <vector>

#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

std::string TextOrAbsent(const std::optional<std::string>& text) {
  return text.value_or(AbsentText);
}

}  // namespace

void PrintHeader(Console& console, const BoardIdentity& identity,
                 const std::optional<std::string>& personalitiesDirectory) {
  console.Print("\nBoard ID:                %" PRIX64 "\n", identity.boardId);
  console.Write("Board ID String:         " + TextOrAbsent(identity.boardIdString) + "\n");
  console.Print("Board Revision:          %u\n", identity.boardRevision);
  console.Write("\nPersonalities Directory: " + TextOrAbsent(personalitiesDirectory) + "\n");
  console.Write("\n\n");
  console.Flush();
}

std::optional<Fault> PrintHardware(Console& console, Registry& registry) {
  auto hardware = CollectPortControllers(registry);
  if (hardware && hardware->records.empty()) hardware = CollectThunderboltControllers(registry);
  if (!hardware) return hardware.Error();
  if (hardware->records.empty()) {
    console.Write("No supported hardware on this platform?\n");
  } else {
    std::vector<PropertyValue> list;
    for (const auto& record : hardware->records) list.emplace_back(Dictionary(record));
    console.Write("Current hardware:\n\n");
    console.Write(DumpText(Array(list)));
  }
  console.Flush();
  console.Write("\n\n");
  console.Flush();
  return std::nullopt;
}

}  // namespace fernwick
