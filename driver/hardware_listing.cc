#include "driver/hardware_listing.h"

#include <cinttypes>

#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

const char* TextOrAbsent(const std::optional<std::string>& text) {
  return text ? text->c_str() : AbsentText;
}

}  // namespace

void PrintHeader(Output& out, const BoardIdentity& identity,
                 const std::optional<std::string>& personalitiesDirectory) {
  out.Print("\nBoard ID:                %" PRIX64 "\n", identity.boardId);
  out.Print("Board ID String:         %s\n", TextOrAbsent(identity.boardIdString));
  out.Print("Board Revision:          %u\n", identity.boardRevision);
  out.Print("\nPersonalities Directory: %s\n", TextOrAbsent(personalitiesDirectory));
  out.Write("\n\n");
  out.Flush();
}

void PrintHardware(Output& out, Registry& registry) {
  auto hardware = CollectPortControllers(registry);
  if (!hardware) hardware = CollectThunderboltControllers(registry);
  if (!hardware) {
    out.Write("No supported hardware on this platform?\n");
  } else {
    const Array list(hardware->begin(), hardware->end());
    out.Write("Current hardware:\n\n");
    out.Write(DumpText(list));
  }
  out.Flush();
  out.Write("\n\n");
  out.Flush();
}

}  // namespace fernwick
