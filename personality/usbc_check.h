#pragma once

#include "personality/checked_values.h"
#include "personality/requirement_recorder.h"

namespace fernwick {

/// Whether a "USBC" personality applies to a port: everything that a "LegacyUSBC" one must satisfy,
/// then "RID", the bounds of the board revision and the port silicon. Of `boardRevision` only the
/// low 8 bits count. Without a recorder it stops at the first requirement that fails. Writes to
/// standard error what the version window has to tell, and which one is missing of "Port Silicon
/// Revision" and, where the personality names them, "Port OTP Revision" and "Port UUID".
bool CheckUsbcRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                           unsigned boardRevision, RequirementRecorder* recorder = nullptr);

}  // namespace fernwick
