#include "personality/legacy_usbc_check.h"

#include "personality/requirement_rules.h"

namespace fernwick {

bool CheckLegacyUsbcRequirements(const Personality& personality, const HardwareRecord& hardware) {
  return FirmwareVersionWindow(personality, hardware, EngineeringGate::On) &&
         RequirementSetMatch(personality, hardware, {.key = "Port Address"});
}

}  // namespace fernwick
