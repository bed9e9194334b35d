#pragma once

#include "personality/checked_values.h"
#include "personality/requirement_recorder.h"

namespace fernwick {

/// Whether a "LegacyUSBC" personality applies to a port: its version window, whose diagnostics it
/// writes to standard error, and "Port Address".
bool CheckLegacyUsbcRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                                 RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
