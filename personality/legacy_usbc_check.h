#pragma once

#include "personality/personality.h"
#include "registry/hardware_record.h"

namespace fernwick {

/// Whether a "LegacyUSBC" personality applies to a port: its version window and "Port Address". May
/// write a diagnostic to standard error when it rejects.
bool CheckLegacyUsbcRequirements(const Personality& personality, const HardwareRecord& hardware);

}  // namespace fernwick
