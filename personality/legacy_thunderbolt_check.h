#pragma once

#include "personality/checked_values.h"
#include "personality/requirement_recorder.h"

namespace fernwick {

/// Whether a "LegacyThunderbolt" personality applies to a Thunderbolt controller: its version
/// window, whose diagnostics it writes to standard error, then "RID", the Ridge silicon and "Ridge
/// UID". Engineering firmware is no obstacle here. The third argument is ignored; callers pass 0.
bool CheckLegacyThunderboltRequirements(const CheckedValues& personality,
                                        const CheckedValues& hardware, int ignored,
                                        RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
