#include "lab/recordings/tool_properties.h"

#include <algorithm>

#include "driver/bypass_switch.h"
#include "registry/key_schema.h"

namespace fernwick::lab {
namespace {

// Those that become no key of a hardware record.
constexpr std::string_view OtherProperties[] = {
    "board-id", "board-rev", "boot-args", "Depth", "Route String", UpdatesSwitch, VersionSwitch};

}  // namespace

bool ToolReads(std::string_view property) {
  if (property.empty()) return false;
  const auto isOrigin = [&](const Key& key) {
    return key.port.property == property || key.thunderbolt.property == property;
  };
  return std::ranges::find(OtherProperties, property) != std::end(OtherProperties) ||
         std::ranges::any_of(KeySchema(), isOrigin);
}

}  // namespace fernwick::lab
