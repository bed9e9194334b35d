#pragma once

#include "lab/lint_finding.h"
#include "lab/lint_subject.h"

namespace fernwick::lab {

/// What the plan makes of the personality's "Priority".
void LintPriority(const PlacedPersonality& personality, ConfigurationFindings& findings);

/// What the plan makes of its "Firmware Mode", where it has it from the personality.
void LintFirmwareMode(const PlacedPersonality& personality, ConfigurationFindings& findings);

/// The shapes of the personality's NVRAM settings.
void LintNvramShapes(const PlacedPersonality& personality, ConfigurationFindings& findings);

}  // namespace fernwick::lab
