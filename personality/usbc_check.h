#pragma once

#include "personality/checked_values.h"
#include "personality/requirement_recorder.h"

namespace fernwick {

/// Whether a "USBC" personality applies to a port: everything that a "LegacyUSBC" one must satisfy,
/// then "RID", the bounds of the board revision and the port silicon. Of `boardRevision` only the
/// low 8 bits count. Stops at the first requirement that fails. Writes the diagnostics of the
/// version window and, where a needed port silicon key is missing, of that key to standard error.
bool CheckUsbcRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                           unsigned boardRevision, RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
