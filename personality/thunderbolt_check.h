#pragma once

#include "personality/checked_values.h"
#include "personality/requirement_recorder.h"

namespace fernwick {

/// Whether a "Thunderbolt" personality applies to a port and the Thunderbolt controller behind it:
/// everything that a "USBC" and then everything that a "LegacyThunderbolt" one must satisfy, then
/// the device model and "Firmware Mode". What the two have in common is tested, and told, twice.
/// Writes to standard error what those two have to tell.
bool CheckThunderboltRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                                  unsigned boardRevision, RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
