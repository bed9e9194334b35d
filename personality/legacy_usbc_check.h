#pragma once

#include "personality/personality.h"
#include "personality/requirement_recorder.h"
#include "registry/hardware_record.h"

namespace fernwick {

/// Whether a "LegacyUSBC" personality applies to a port: its version window, whose diagnostics it
/// writes to standard error, and "Port Address".
bool CheckLegacyUsbcRequirements(const Personality& personality, const HardwareRecord& hardware,
                                 RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
