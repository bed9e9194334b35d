#include "personality/legacy_thunderbolt_check.h"

#include "personality/personality.h"
#include "personality/requirement_rules.h"

namespace fernwick {
namespace {

constexpr RequirementSet Requirements[] = {
    {.key = "RID"},
    {.key = "Ridge Silicon Vendor ID", .presence = KeyPresence::RequiredKey},
    {.key = "Ridge Silicon Device ID", .presence = KeyPresence::RequiredKey},
    {.key = "Ridge Silicon Revision", .presence = KeyPresence::RequiredKey},
    {.key = "Ridge UID"},
};

}  // namespace

bool CheckLegacyThunderboltRequirements(const CheckedValues& personality,
                                        const CheckedValues& hardware, int /*ignored*/,
                                        RequirementRecorder* recorder) {
  const CheckScope scope(PersonalityType::LegacyThunderbolt, recorder);
  return AllMet(
      recorder,
      [&] { return FirmwareVersionWindow(personality, hardware, EngineeringGate::Off, recorder); },
      [&] { return MatchesAll(personality, hardware, Requirements, recorder); });
}

}  // namespace fernwick
