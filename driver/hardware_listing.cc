#include "driver/hardware_listing.h"

#include <cinttypes>

#include "plan/value_conversions.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

const char* TextOrAbsent(const std::optional<std::string>& text) {
  return text ? text->c_str() : AbsentText;
}

}  // namespace

void PrintHeader(std::FILE* out, const BoardIdentity& identity,
                 const std::optional<std::string>& personalitiesDirectory) {
  std::fprintf(out, "\nBoard ID:                %" PRIX64 "\n", identity.boardId);
  std::fprintf(out, "Board ID String:         %s\n", TextOrAbsent(identity.boardIdString));
  std::fprintf(out, "Board Revision:          %u\n", identity.boardRevision);
  std::fprintf(out, "\nPersonalities Directory: %s\n", TextOrAbsent(personalitiesDirectory));
  std::fputs("\n\n", out);
  std::fflush(out);
}

void PrintHardware(std::FILE* out, Registry& registry) {
  auto hardware = CollectPortControllers(registry);
  if (!hardware) hardware = CollectThunderboltControllers(registry);
  if (!hardware) {
    std::fputs("No supported hardware on this platform?\n", out);
  } else {
    const Array list(hardware->begin(), hardware->end());
    std::fprintf(out, "Current hardware:\n\n%s", DumpText(list).c_str());
  }
  std::fflush(out);
  std::fputs("\n\n", out);
  std::fflush(out);
}

}  // namespace fernwick
