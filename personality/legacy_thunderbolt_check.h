#pragma once

#include "personality/personality.h"
#include "personality/requirement_recorder.h"
#include "registry/hardware_record.h"

namespace fernwick {

/// Whether a "LegacyThunderbolt" personality applies to a Thunderbolt controller: its version
/// window, whose diagnostics it writes to standard error, then "RID", the Ridge silicon and "Ridge
/// UID". Engineering firmware is no obstacle here. The third argument is ignored; callers pass 0.
bool CheckLegacyThunderboltRequirements(const Personality& personality,
                                        const HardwareRecord& hardware, int ignored,
                                        RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
