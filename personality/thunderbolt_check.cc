#include "personality/thunderbolt_check.h"

#include "personality/legacy_thunderbolt_check.h"
#include "personality/personality.h"
#include "personality/requirement_rules.h"
#include "personality/usbc_check.h"

namespace fernwick {
namespace {

constexpr RequirementSet DeviceModel[] = {
    {.key = "Device Model Name", .kind = SingleValueKind::StringKind, .equal = StringsEqual},
    {.key = "Device Model ID"},
    {.key = "Device Model Revision"},
    {.key = "Firmware Mode"},
};

}  // namespace

bool CheckThunderboltRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                                  unsigned boardRevision, RequirementRecorder* recorder) {
  const CheckScope scope(PersonalityType::Thunderbolt, recorder);
  return AllMet(
      recorder,
      [&] { return CheckUsbcRequirements(personality, hardware, boardRevision, recorder); },
      [&] { return CheckLegacyThunderboltRequirements(personality, hardware, 0, recorder); },
      [&] { return MatchesAll(personality, hardware, DeviceModel, recorder); });
}

}  // namespace fernwick
