#include "personality/legacy_usbc_check.h"

#include "personality/personality.h"
#include "personality/requirement_rules.h"

namespace fernwick {

bool CheckLegacyUsbcRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                                 RequirementRecorder* recorder) {
  const CheckScope scope(PersonalityType::LegacyUsbc, recorder);
  return AllMet(
      recorder,
      [&] { return FirmwareVersionWindow(personality, hardware, EngineeringGate::On, recorder); },
      [&] {
        return RequirementSetMatch(personality, hardware, {.key = "Port Address"}, recorder);
      });
}

}  // namespace fernwick
